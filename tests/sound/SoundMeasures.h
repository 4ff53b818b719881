#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <span>
#include <vector>

#include "sound/SoundSource.h"

// What can be measured of rendered sound.

namespace tendel::measures {

struct Stereo {
    std::vector<float> left, right;

    explicit Stereo(std::size_t frames) : left(frames), right(frames) {}
};

// Renders in pieces as an output would ask for them.
inline Stereo rendered(SoundSource& source, double seconds, double sampleRate,
                       std::size_t piece = 1024) {
    Stereo sound(static_cast<std::size_t>(seconds * sampleRate));
    for (std::size_t done = 0; done < sound.left.size(); done += piece)
        source.render(sound.left.data() + done, sound.right.data() + done,
                      std::min(piece, sound.left.size() - done));
    return sound;
}

inline double decibels(double amplitude) {
    return 20 * std::log10(std::max(amplitude, 1e-12));
}

inline double mean(std::span<const float> samples) {
    double sum = 0;
    for (const float sample : samples)
        sum += sample;
    return sum / static_cast<double>(samples.size());
}

inline double correlation(std::span<const float> a, std::span<const float> b) {
    double ab = 0, aa = 0, bb = 0;
    for (std::size_t i = 0; i < a.size(); ++i) {
        ab += double{a[i]} * b[i];
        aa += double{a[i]} * a[i];
        bb += double{b[i]} * b[i];
    }
    return ab / std::sqrt(aa * bb);
}

// In place; the size is a power of two. Cooley and Tukey's, decimated in time.
inline void fourierTransform(std::vector<std::complex<double>>& x) {
    const std::size_t size = x.size();
    // As `a * b`, which would look for infinities most of the time.
    const auto product = [](std::complex<double> a, std::complex<double> b) {
        return std::complex(a.real() * b.real() - a.imag() * b.imag(),
                            a.real() * b.imag() + a.imag() * b.real());
    };
    for (std::size_t i = 1, reversed = 0; i < size; ++i) {
        std::size_t bit = size / 2;
        for (; reversed & bit; bit /= 2)
            reversed ^= bit;
        reversed |= bit;
        if (i < reversed) std::swap(x[i], x[reversed]);
    }
    for (std::size_t length = 2; length <= size; length *= 2) {
        const auto turn = std::polar(1.0, -2 * std::numbers::pi / static_cast<double>(length));
        for (std::size_t start = 0; start < size; start += length) {
            std::complex<double> factor = 1;
            for (std::size_t i = start; i < start + length / 2; ++i) {
                const auto odd = product(factor, x[i + length / 2]);
                x[i + length / 2] = x[i] - odd;
                x[i] += odd;
                factor = product(factor, turn);
            }
        }
    }
}

constexpr std::size_t spectrumSize = 16384;

// The mean square of both channels together, bin by bin, in Hann windows (Bartlett's method).
inline std::vector<double> powerSpectrum(const Stereo& sound) {
    constexpr auto size = static_cast<double>(spectrumSize);
    const std::size_t windows = sound.left.size() / spectrumSize;
    std::vector<double> power(spectrumSize / 2);
    // Two real signals as one complex one: together, its two halves have the power of both.
    std::vector<std::complex<double>> window(spectrumSize);
    for (std::size_t start = 0; start < windows * spectrumSize; start += spectrumSize) {
        for (std::size_t i = 0; i < spectrumSize; ++i)
            window[i] = std::complex<double>(sound.left[start + i], sound.right[start + i]) *
                        (1 - std::cos(2 * std::numbers::pi * static_cast<double>(i) / size));
        fourierTransform(window);
        for (std::size_t i = 1; i < power.size(); ++i)
            power[i] += (std::norm(window[i]) + std::norm(window[spectrumSize - i])) /
                        (1.5 * size * size * static_cast<double>(windows));
    }
    return power;
}

// How far the densities of the third-octave bands lie off a straight line of so many dB an octave,
// at most, when it is laid through the middle of them.
inline double departure(const Stereo& sound, double sampleRate, double from, double to,
                        double slope) {
    const std::vector<double> power = powerSpectrum(sound);
    const auto bin = [&](double hertz) {
        return static_cast<std::size_t>(std::ceil(hertz * spectrumSize / sampleRate));
    };
    const double third = std::cbrt(2.0);
    std::vector<double> levels;
    for (double low = from; low * third <= to * 1.001; low *= third) {
        double sum = 0;
        for (std::size_t i = bin(low); i < bin(low * third); ++i)
            sum += power[i] / static_cast<double>(bin(low * third) - bin(low));
        levels.push_back(10 * std::log10(sum) - slope * std::log2(low / from));
    }
    const auto [least, most] = std::ranges::minmax(levels);
    return (most - least) / 2;
}

// The K-weighting of ITU-R BS.1770 as a gain of the power at a frequency: a shelf of 4 dB above
// some 1.7 kHz, for the head, and a high-pass at 38 Hz, by the analogue filters behind its
// coefficients.
inline double kWeighting(double hertz) {
    constexpr std::complex<double> i(0, 1);
    const double high = std::pow(10, 3.999843853973347 / 20);
    const auto s = i * hertz / 1681.974450955533, t = i * hertz / 38.13547087602444;
    const auto shelf =
        (1.0 + std::pow(high, 0.4996667741545416) * s / 0.7071752369554196 + high * s * s) /
        (1.0 + s / 0.7071752369554196 + s * s);
    return std::norm(shelf * t * t / (1.0 + t / 0.5003270373238773 + t * t));
}

// Loudness (ITU-R BS.1770), LUFS, without the gates: these sounds never pause.
inline double loudness(const Stereo& sound, double sampleRate) {
    const std::vector<double> power = powerSpectrum(sound);
    double sum = 0;
    for (std::size_t i = 1; i < power.size(); ++i)
        sum += power[i] * kWeighting(static_cast<double>(i) * sampleRate / spectrumSize);
    return -0.691 + 10 * std::log10(sum);
}

}  // namespace tendel::measures

#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
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
    for (std::size_t done = 0; done < sound.left.size();) {
        const std::size_t length = std::min(piece, sound.left.size() - done);
        source.render(sound.left.data() + done, sound.right.data() + done, length);
        done += length;
    }
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
            for (std::size_t i = start; i < start + length / 2; ++i, factor *= turn) {
                const auto odd = factor * x[i + length / 2];
                x[i + length / 2] = x[i] - odd;
                x[i] += odd;
            }
        }
    }
}

// Power per bin, averaged over half-overlapping Hann windows (Welch's method).
inline std::vector<double> powerSpectrum(std::span<const float> samples, std::size_t size) {
    std::vector<double> power(size / 2);
    std::vector<std::complex<double>> window(size);
    for (std::size_t start = 0; start + size <= samples.size(); start += size / 2) {
        for (std::size_t i = 0; i < size; ++i)
            window[i] = samples[start + i] *
                        (0.5 - 0.5 * std::cos(2 * std::numbers::pi * static_cast<double>(i) /
                                              static_cast<double>(size)));
        fourierTransform(window);
        for (std::size_t i = 0; i < power.size(); ++i)
            power[i] += std::norm(window[i]);
    }
    return power;
}

// The straight line through the density of third-octave bands.
struct SpectralLine {
    double slope = 0;      // dB an octave
    double departure = 0;  // dB by which a band lies off the line, at most
};

inline SpectralLine spectralLine(std::span<const float> samples, double sampleRate, double from,
                                 double to) {
    constexpr std::size_t size = 16384;
    const std::vector<double> power = powerSpectrum(samples, size);
    const double perHertz = size / sampleRate;
    const double third = std::cbrt(2.0);
    std::vector<double> octaves, levels;
    for (double low = from; low * third <= to * 1.001; low *= third) {
        const auto first = static_cast<std::size_t>(std::ceil(low * perHertz));
        const auto last = static_cast<std::size_t>(std::ceil(low * third * perHertz));
        double sum = 0;
        for (std::size_t i = first; i < last; ++i)
            sum += power[i];
        octaves.push_back(std::log2(low));
        levels.push_back(10 * std::log10(sum / static_cast<double>(last - first)));
    }
    const auto count = static_cast<double>(octaves.size());
    double x = 0, y = 0, xx = 0, xy = 0;
    for (std::size_t i = 0; i < octaves.size(); ++i) {
        x += octaves[i] / count;
        y += levels[i] / count;
        xx += octaves[i] * octaves[i] / count;
        xy += octaves[i] * levels[i] / count;
    }
    SpectralLine line{.slope = (xy - x * y) / (xx - x * x)};
    for (std::size_t i = 0; i < octaves.size(); ++i)
        line.departure =
            std::max(line.departure, std::abs(levels[i] - y - line.slope * (octaves[i] - x)));
    return line;
}

// The second-order sections of the K-weighting (ITU-R BS.1770), the analogue filters behind the
// recommendation's 48 kHz coefficients transformed to any sample rate.
class KWeighting {
public:
    explicit KWeighting(double sampleRate) {
        // The shelf: 4 dB above some 1.7 kHz, for the head.
        const double high = std::pow(10, 3.999843853973347 / 20);
        const double middle = std::pow(high, 0.4996667741545416);
        shelf_ = section(1681.974450955533, 0.7071752369554196, sampleRate, 1, middle, high);
        highPass_ = section(38.13547087602444, 0.5003270373238773, sampleRate, 0, 0, 1);
        // The recommendation leaves the high-pass with a numerator of 1, −2, 1.
        const double gain = 1 / highPass_.b[0];
        for (double& b : highPass_.b)
            b *= gain;
    }
    double next(double x) { return highPass_.next(shelf_.next(x)); }

private:
    struct Section {
        double b[3] = {}, a[2] = {}, s[2] = {};

        double next(double x) {
            const double y = b[0] * x + s[0];
            s[0] = b[1] * x - a[0] * y + s[1];
            s[1] = b[2] * x - a[1] * y;
            return y;
        }
    };

    // (low + middle·s/Q + high·s²) ÷ (1 + s/Q + s²), by the bilinear transform.
    static Section section(double hertz, double q, double sampleRate, double low, double middle,
                           double high) {
        const double k = std::tan(std::numbers::pi * hertz / sampleRate);
        const double scale = 1 / (1 + k / q + k * k);
        Section made;
        made.b[0] = (high + middle * k / q + low * k * k) * scale;
        made.b[1] = 2 * (low * k * k - high) * scale;
        made.b[2] = (high - middle * k / q + low * k * k) * scale;
        made.a[0] = 2 * (k * k - 1) * scale;
        made.a[1] = (1 - k / q + k * k) * scale;
        return made;
    }

    Section shelf_, highPass_;
};

// Integrated loudness (ITU-R BS.1770-4), LUFS: 400 ms blocks every 100 ms, gated at −70 LUFS and
// then at 10 LU under the mean of the rest.
inline double loudness(const Stereo& sound, double sampleRate) {
    KWeighting left(sampleRate), right(sampleRate);
    const auto hop = static_cast<std::size_t>(sampleRate / 10);
    std::vector<double> hops;
    for (std::size_t start = 0; start + hop <= sound.left.size(); start += hop) {
        double sum = 0;
        for (std::size_t i = start; i < start + hop; ++i) {
            const double l = left.next(sound.left[i]), r = right.next(sound.right[i]);
            sum += l * l + r * r;
        }
        hops.push_back(sum / static_cast<double>(hop));
    }
    std::vector<double> blocks;
    for (std::size_t i = 0; i + 4 <= hops.size(); ++i)
        blocks.push_back((hops[i] + hops[i + 1] + hops[i + 2] + hops[i + 3]) / 4);
    const auto gatedMean = [&](double gate) {
        double sum = 0, count = 0;
        for (const double block : blocks)
            if (block > gate) sum += block, ++count;
        return count > 0 ? sum / count : 0;
    };
    const auto lufs = [](double power) { return -0.691 + 10 * std::log10(std::max(power, 1e-30)); };
    const double absolute = std::pow(10, (-70 + 0.691) / 10);
    return lufs(gatedMean(std::max(absolute, gatedMean(absolute) / 10)));
}

}  // namespace tendel::measures

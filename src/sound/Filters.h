#pragma once

#include <algorithm>
#include <cmath>
#include <numbers>

#include "sound/SoundRandom.h"

namespace tendel {

// Falls by 6 dB an octave above its cut-off (Hz): y += c·(x − y), c = 1 − exp(−2π·fc ÷ rate).
struct OnePoleLowPass {
    float coefficient = 1;
    float output = 0;

    OnePoleLowPass() = default;
    OnePoleLowPass(double cutOff, double sampleRate)
        : coefficient(
              static_cast<float>(1 - std::exp(-2 * std::numbers::pi * cutOff / sampleRate))) {}

    float next(float x) { return output += coefficient * (x - output); }
};

// What a low-pass takes away.
struct OnePoleHighPass {
    OnePoleLowPass lowPass;

    OnePoleHighPass() = default;
    OnePoleHighPass(double cutOff, double sampleRate) : lowPass(cutOff, sampleRate) {}

    float next(float x) { return x - lowPass.next(x); }
};

// The band output of a state-variable filter (Chamberlin, "Musical Applications of
// Microprocessors"); `frequency` may move from sample to sample. The gain at the centre is
// 1 ÷ damping. Stable for centres below a sixth of the sample rate.
struct BandPass {
    float frequency = 0;
    float damping = 1;
    float low = 0;
    float band = 0;

    // The `frequency` for a centre in Hz.
    static float tuning(double center, double sampleRate) {
        return static_cast<float>(2 * std::sin(std::numbers::pi * center / sampleRate));
    }

    float next(float x) {
        low += frequency * band;
        const float high = x - low - damping * band;
        band += frequency * high;
        return band;
    }
};

// Leaves what is within ±knee alone and bends the rest, however large, into −1 to 1 without an
// edge.
inline float softClip(float x, float knee = 0.5F) {
    const float over = std::max(std::abs(x) - knee, 0.F);
    const float within = std::clamp(x, -knee, knee);
    return within + std::copysign(over / (1 + over / (1 - knee)), x);
}

// A slow random walk within a range, in straight segments that last a half to one and a half
// periods (seconds).
struct Drift {
    struct Range {
        float lower = 0;
        float upper = 1;
    };

    Range range{};
    float period = 1;
    float sampleRate = 48000;
    float value = (range.lower + range.upper) / 2;
    float step = 0;
    int samplesLeft = 0;

    float next(SoundRandom& random) {
        if (samplesLeft < 1) {
            const float length = sampleRate * period * (random.uniform() + 0.5F);
            samplesLeft = std::max(static_cast<int>(length), 1);
            const float target = random.between(range.lower, range.upper);
            step = (target - value) / static_cast<float>(samplesLeft);
        }
        --samplesLeft;
        value = std::clamp(value + step, range.lower, range.upper);
        return value;
    }
};

}  // namespace tendel

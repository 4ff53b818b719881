#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>

#include "sound/FastSine.h"

namespace tendel {

// One sine of a note or a bell: rises in a straight line to its peak, then falls exponentially
// until it cannot be heard.
struct SineVoice {
    float frequency = 0;  // turns a sample
    float phase = 0;      // turns
    float level = 0;
    float peak = 0;
    bool isRising = false;
    float attackStep = 0;     // a sample
    float releaseFactor = 0;  // a sample
    float leftGain = 0;
    float rightGain = 0;

    // Below this a voice ends, long before its numbers become subnormal.
    static constexpr float inaudible = 1e-5F;

    // What a voice of so many Hz is like. `attack` in seconds to the peak, `decay` in seconds from
    // there to 60 dB less, `pan` from 0 (left) to 1 (right) at equal power.
    static SineVoice at(double hertz, double sampleRate, float peak, double attack, double decay,
                        double pan) {
        SineVoice voice;
        voice.frequency = static_cast<float>(hertz / sampleRate);
        voice.peak = peak;
        voice.isRising = true;
        voice.attackStep = static_cast<float>(peak / (attack * sampleRate));
        voice.releaseFactor = static_cast<float>(std::pow(0.001, 1 / (decay * sampleRate)));
        voice.leftGain = static_cast<float>(std::cos(pan * std::numbers::pi / 2));
        voice.rightGain = static_cast<float>(std::sin(pan * std::numbers::pi / 2));
        return voice;
    }

    bool isSounding() const { return isRising || level > 0; }

    void addTo(float* left, float* right, std::size_t frames) {
        std::size_t i = 0;
        for (; isRising && i < frames; ++i) {
            level += attackStep;
            isRising = level < peak;
            add(left + i, right + i);
        }
        // Falling goes lane by lane, so that the lanes share one vector instruction.
        float factors[lanes], turns[lanes], samples[lanes];
        float factor = 1;
        for (std::size_t lane = 0; lane < lanes; ++lane) {
            factors[lane] = factor *= releaseFactor;
            turns[lane] = frequency * static_cast<float>(lane + 1);
        }
        for (; i + lanes <= frames; i += lanes) {
            for (std::size_t lane = 0; lane < lanes; ++lane)
                samples[lane] = level * factors[lane] * fastSine(fraction(phase + turns[lane]));
            for (std::size_t lane = 0; lane < lanes; ++lane)
                left[i + lane] += samples[lane] * leftGain;
            for (std::size_t lane = 0; lane < lanes; ++lane)
                right[i + lane] += samples[lane] * rightGain;
            level *= factors[lanes - 1];
            phase = fraction(phase + turns[lanes - 1]);
        }
        for (; i < frames; ++i) {
            level *= releaseFactor;
            add(left + i, right + i);
        }
        if (!isRising && level < inaudible) level = 0;
    }

private:
    static constexpr std::size_t lanes = 16;

    static float fraction(float x) { return x - static_cast<float>(static_cast<int>(x)); }
    void add(float* left, float* right) {
        phase = fraction(phase + frequency);
        const float sample = level * fastSine(phase);
        *left += sample * leftGain;
        *right += sample * rightGain;
    }
};

}  // namespace tendel

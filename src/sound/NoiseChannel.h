#pragma once

#include <cmath>

#include "sound/SoundRandom.h"

namespace tendel {

// One channel of noise, sample by sample. At every sample rate the same filters: pink keeps its
// level in every octave, brown's corner (where it begins to fall) lies at 0.32 % of the rate.
struct NoiseChannel {
    enum class Color { white, pink, brown };

    Color color = Color::white;
    float b0 = 0, b1 = 0, b2 = 0, b3 = 0, b4 = 0, b5 = 0, b6 = 0;
    float brown = 0;

    float next(SoundRandom& random) {
        const float w = random.noise();
        switch (color) {
            case Color::white:
                break;
            case Color::pink:
                return nextPink(w);
            case Color::brown:
                // A leaky integrator.
                brown = (brown + 0.02F * w) / 1.02F;
                return brown * 2.5F;
        }
        return w * 0.3F;
    }

private:
    // Paul Kellet's refined filter: poles spaced so that their sum falls by 3 dB an octave.
    float nextPink(float w) {
        b0 = 0.99886F * b0 + 0.0555179F * w;
        b1 = 0.99332F * b1 + 0.0750759F * w;
        b2 = 0.969F * b2 + 0.153852F * w;
        b3 = 0.8665F * b3 + 0.3104856F * w;
        b4 = 0.55F * b4 + 0.5329522F * w;
        b5 = -0.7616F * b5 - 0.016898F * w;
        const float pink = b0 + b1 + b2 + b3 + b4 + b5 + b6 + 0.5362F * w;
        b6 = 0.115926F * w;
        return pink * 0.08F;
    }
};

// How much louder each sample of white noise must be for the same level per Hz as at 48 kHz.
inline float whiteNoiseScale(double sampleRate) {
    return static_cast<float>(std::sqrt(sampleRate / 48000));
}

}  // namespace tendel

#pragma once

#include <cmath>

#include "sound/SoundRandom.h"

namespace tendel {

// Short bursts of noise at random moments, each as loud as it begins and falling exponentially:
// what drops and crackles are made of.
struct Bursts {
    float level = 0;
    float decay = 0;  // factor a sample

    // What a burst may be like.
    struct Kind {
        float loudest = 1;
        float rarity = 3;         // the higher, the fewer are loud
        float shortest = 0.001F;  // seconds to 1/e
        float longest = 0.01F;
    };

    // Lets one start with a chance (0–1) a sample; a quieter one than what sounds is not heard.
    void mayStart(float chance, const Kind& kind, float sampleRate, SoundRandom& random) {
        if (random.uniform() >= chance) return;
        // Most are small and few are near.
        const float drawn =
            kind.loudest * (0.03F + 0.97F * std::pow(random.uniform(), kind.rarity));
        const float seconds = random.between(kind.shortest, kind.longest);
        if (drawn <= level) return;
        level = drawn;
        decay = std::exp(-1 / (seconds * sampleRate));
    }
    // Its noise. Silent at once where it is too weak to hear, before its numbers become subnormal.
    float next(SoundRandom& random) {
        const float noise = random.noise() * level;
        level *= decay;
        if (level < 1e-6F) level = 0;
        return noise;
    }
};

}  // namespace tendel

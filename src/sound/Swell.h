#pragma once

#include <cmath>
#include <numbers>

#include "sound/SoundRandom.h"

namespace tendel {

// A slow rise and fall, as of waves and gusts: one sine turn each, every one of another length and
// height. It rests at 0 between two, so neither change is heard.
struct Swell {
    float shortest = 5;  // seconds a turn
    float longest = 10;
    float lowest = 0.5F;  // height of a turn; the highest is 1
    float phase = 0;      // turns
    float step = 0;       // turns a sample
    float height = 1;

    // Begins at a random place, so that two never start together.
    void start(SoundRandom& random, double sampleRate) {
        draw(random, sampleRate);
        phase = random.uniform();
    }
    void advance(SoundRandom& random, double sampleRate, int samples) {
        phase += step * static_cast<float>(samples);
        if (phase < 1) return;
        phase -= 1;
        draw(random, sampleRate);
    }
    // 0–1.
    float value() const {
        return height * (0.5F - 0.5F * std::cos(2 * std::numbers::pi_v<float> * phase));
    }

private:
    void draw(SoundRandom& random, double sampleRate) {
        const double length = random.between(shortest, longest);
        step = static_cast<float>(1 / (length * sampleRate));
        height = random.between(lowest, 1);
    }
};

}  // namespace tendel

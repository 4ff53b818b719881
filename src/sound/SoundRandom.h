#pragma once

#include <cstdint>

namespace tendel {

// The random numbers of one sound: SplitMix64 (Steele, Lea, Flood, "Fast Splittable Pseudorandom
// Number Generators", 2014) without its last xor-shift, which never reaches the 24 bits used.
struct SoundRandom {
    std::uint64_t state = 0;  // the seed

    constexpr std::uint64_t next() {
        state += 0x9E3779B97F4A7C15;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EB;
        return z;
    }
    // In [0, 1).
    constexpr float uniform() {
        return static_cast<float>(static_cast<std::int32_t>(next() >> 40)) * 0x1p-24F;
    }
    // In [low, high).
    constexpr float between(float low, float high) { return low + uniform() * (high - low); }
    // A sample of white noise in [−1, 1).
    constexpr float noise() { return uniform() * 2 - 1; }
};

}  // namespace tendel

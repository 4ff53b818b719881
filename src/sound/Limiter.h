#pragma once

#include <cstddef>

namespace tendel {

// Keeps a sum of sounds within −1 to 1. What stays below the threshold passes bit by bit; what is
// louder for a while is turned down as a whole, slowly enough not to be heard as pumping, and
// single peaks meanwhile bend into full scale over a soft knee.
class Limiter {
public:
    explicit Limiter(double sampleRate);

    void process(float* left, float* right, std::size_t frames);

    static constexpr float threshold = 0.8F;

private:
    float release_;   // what is left of the envelope after one sample
    float approach_;  // how much of the way the gain goes in one sample
    float envelope_ = 0;
    float gain_ = 1;
};

}  // namespace tendel

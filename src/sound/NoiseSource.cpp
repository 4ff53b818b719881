#include "sound/NoiseSource.h"

#include <algorithm>

namespace tendel {

NoiseSource::NoiseSource(NoiseChannel::Color color, std::uint64_t seed)
    : random_{seed}, leftNoise_{color}, rightNoise_{color} {}

void NoiseSource::render(float* left, float* right, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = std::clamp(leftNoise_.next(random_), -1.F, 1.F);
        right[i] = std::clamp(rightNoise_.next(random_), -1.F, 1.F);
    }
}

}  // namespace tendel

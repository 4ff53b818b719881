#include "sound/Limiter.h"

#include <algorithm>
#include <cmath>

namespace tendel {

namespace {

constexpr double releaseSeconds = 3;
constexpr double approachSeconds = 0.02;

// x above the threshold t becomes t + (1 − t)·u ÷ (1 + u) with u = (x − t) ÷ (1 − t): the slope is
// 1 at the threshold and goes to 0 toward full scale, which is never reached.
float softKnee(float x) {
    const float excess = std::abs(x) - Limiter::threshold;
    if (excess <= 0) return x;
    constexpr float room = 1 - Limiter::threshold;
    return std::copysign(Limiter::threshold + room * excess / (room + excess), x);
}

}  // namespace

Limiter::Limiter(double sampleRate)
    : release_(static_cast<float>(std::exp(-1 / (releaseSeconds * sampleRate)))),
      approach_(static_cast<float>(1 - std::exp(-1 / (approachSeconds * sampleRate)))) {}

void Limiter::process(float* left, float* right, std::size_t frames) {
    float peak = 0;
    for (std::size_t i = 0; i < frames; ++i)
        peak = std::max({peak, std::abs(left[i]), std::abs(right[i])});
    if (gain_ == 1 && std::max(peak, envelope_) <= threshold) return;

    for (std::size_t i = 0; i < frames; ++i) {
        const float here = std::max(std::abs(left[i]), std::abs(right[i]));
        envelope_ = std::max(here, envelope_ * release_);
        const float wanted = envelope_ > threshold ? threshold / envelope_ : 1;
        gain_ += approach_ * (wanted - gain_);
        // The steps of the last bit of the way, 0.001 dB, would be lost beside 1.
        if (wanted == 1 && gain_ > 0.9999F) gain_ = 1;
        left[i] = softKnee(left[i] * gain_);
        right[i] = softKnee(right[i] * gain_);
    }
}

}  // namespace tendel

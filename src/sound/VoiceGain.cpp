#include "sound/VoiceGain.h"

#include <algorithm>
#include <cmath>

namespace tendel {

void GainRamp::follow(VoiceGain::Aim aim) {
    if (aim == aim_) return;
    aim_ = aim;
    step_ = std::abs(aim.target - level_) / std::max(aim.frames, 1u);
}

void GainRamp::restart(std::uint32_t frames) {
    level_ = 0;
    step_ = static_cast<double>(aim_.target) / std::max(frames, 1u);
}

void GainRamp::apply(float* left, float* right, std::size_t frames) {
    const double target = aim_.target;
    std::size_t i = 0;
    for (; i < frames && level_ != target; ++i) {
        level_ =
            level_ < target ? std::min(level_ + step_, target) : std::max(level_ - step_, target);
        const auto gain = static_cast<float>(level_);
        left[i] *= gain;
        right[i] *= gain;
    }
    const auto gain = static_cast<float>(level_);
    for (; i < frames; ++i) {
        left[i] *= gain;
        right[i] *= gain;
    }
}

}  // namespace tendel

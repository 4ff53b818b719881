#include "sound/SoundVoiceRenderer.h"

#include <algorithm>

namespace tendel {

bool SoundVoiceRenderer::render(float* left, float* right, std::size_t frames) {
    VoiceGain::Aim aim = gain.aim();
    while (isOver(aim)) {
        if (gain.finish(aim)) return false;
        aim = gain.aim();
    }
    hasBegun_ = true;
    level_.follow(aim);
    source_->render(left, right, frames);
    level_.apply(left, right, frames);
    if (framesLeft_) *framesLeft_ -= std::min<std::uint64_t>(*framesLeft_, frames);
    return true;
}

}  // namespace tendel

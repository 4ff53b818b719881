#pragma once

#include <memory>
#include <optional>

#include "sound/SoundSource.h"
#include "sound/VoiceGain.h"

namespace tendel {

// A sound with the gain that is applied to it. Made and destroyed on the main thread, which
// meanwhile touches only `gain`; the rest is the audio thread's.
class SoundVoiceRenderer {
public:
    // Begins at the level `from`, and ends by itself after `length` frames if that is given.
    SoundVoiceRenderer(std::unique_ptr<SoundSource> source, float from, VoiceGain::Aim aim,
                       std::optional<std::uint64_t> length = std::nullopt)
        : gain(aim), source_(std::move(source)), level_(from), framesLeft_(length) {}

    VoiceGain gain;

    // Writes the next samples. False when it has faded out or ended, and by that is finished.
    bool render(float* left, float* right, std::size_t frames);

private:
    bool isOver(VoiceGain::Aim aim) const {
        return (aim.target == 0 && (level_.isSilent() || !hasBegun_)) || framesLeft_ == 0;
    }

    std::unique_ptr<SoundSource> source_;
    GainRamp level_;
    std::optional<std::uint64_t> framesLeft_;
    bool hasBegun_ = false;
};

}  // namespace tendel

#include "sound/FocusSoundRules.h"

#include <algorithm>

namespace tendel {

SoundLevels audible(const SoundMix& mix) {
    SoundLevels levels;
    for (const FocusSound sound : mix.on) {
        const auto chosen = mix.levels.find(sound);
        const double level = chosen != mix.levels.end() ? chosen->second : defaultSoundLevel;
        // Settings can be edited by hand: a mix is never louder than its sliders go.
        if (level > 0) levels[sound] = static_cast<float>(std::min(level, 1.0));
    }
    return levels;
}

SoundLevels FocusSoundRules::wanted(const Input& input) {
    if (input.isAwayFromMac || input.isBusy) return {};
    if (!input.phase) {
        // Who tries out a mix wants to hear it, muted or not.
        if (!input.preview) return {};
        return audible(*input.preview == Row::focus ? input.focusMix : input.breakMix);
    }
    if (input.isPaused || input.isMuted) return {};
    switch (*input.phase) {
        case FocusSession::Phase::focus:
            return audible(input.focusMix);
        case FocusSession::Phase::shortBreak:
        case FocusSession::Phase::longBreak:
            return audible(input.breakMix);
        case FocusSession::Phase::ready:
            break;
    }
    return {};
}

}  // namespace tendel

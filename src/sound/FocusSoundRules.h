#pragma once

#include <optional>

#include "focus/FocusSession.h"
#include "model/SoundMix.h"
#include "sound/SoundPlaying.h"

namespace tendel {

// The level of a sound that was switched on without one, 0–1.
inline constexpr double defaultSoundLevel = 0.6;

// The sounds of a mix that can be heard: those that are on, and not turned all the way down.
SoundLevels audible(const SoundMix& mix);

// Which sounds play when.
struct FocusSoundRules {
    // Which of the two mixes a preview plays.
    enum class Row { focus, breaks };

    struct Input {
        std::optional<FocusSession::Phase> phase{};  // absent without a session
        bool isPaused = false;
        SoundMix focusMix{};
        SoundMix breakMix{};
        bool isMuted = false;
        bool isAwayFromMac = false;
        bool isBusy = false;
        std::optional<Row> preview{};

        friend bool operator==(const Input&, const Input&) = default;
    };

    static SoundLevels wanted(const Input& input);
};

}  // namespace tendel

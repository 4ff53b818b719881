#pragma once

#include <optional>

#include "base/Instant.h"
#include "model/FocusPlan.h"

namespace tendel {

// Five more minutes, of focus taken from a break or of a break that is over.
inline constexpr double focusExtensionSeconds = 300;

// Longer short breaks, in minutes, need no long one; so a long break, three times as long, never
// exceeds half an hour.
inline constexpr int longestBreakWithLongOnes = 10;

// A run of focus phases with breaks between them, as it stands at one moment.
struct FocusSession {
    enum class Phase { focus, shortBreak, longBreak, ready };

    FocusPlan plan{};  // fixed for the session
    Phase phase = Phase::focus;
    int round = 1;                            // counts the focus phases begun from `ready`
    std::optional<Instant> endsAt{};          // absent while paused and in `ready`
    std::optional<double> pausedRemaining{};  // seconds; present while paused
    Instant phaseStartedAt{};                 // not moved by a pause
    double phaseDuration = 0;  // seconds, the whole length of the phase; 0 in `ready`
    bool isExtension = false;  // five more minutes of focus, taken from a break

    bool isPaused() const { return pausedRemaining.has_value(); }
    bool isBreak() const { return phase == Phase::shortBreak || phase == Phase::longBreak; }
    // A focus phase that is not paused: what holds reminders back.
    bool isFocusing() const { return phase == Phase::focus && !isPaused(); }
    // Seconds left of the phase, never negative; 0 in `ready`.
    double remaining(Instant now) const;

    // Goes over into a phase of that many seconds (`ready` has no end), begun at `at`.
    void begin(Phase next, Instant at, double duration);
    // Goes over into the break that the plan has after this round, begun at `at`.
    void endFocus(Instant at);
    // The break that follows the focus phase of this round.
    Phase nextBreak() const;
    int minutesOf(Phase breakPhase) const;

    friend bool operator==(const FocusSession&, const FocusSession&) = default;
};

}  // namespace tendel

#include "focus/FocusSession.h"

#include <algorithm>

namespace tendel {

namespace {

constexpr int longBreakFactor = 3;

}  // namespace

double FocusSession::remaining(Instant now) const {
    if (endsAt) return std::max(toSeconds(*endsAt - now), 0.0);
    return pausedRemaining.value_or(0);
}

void FocusSession::begin(Phase next, Instant at, double duration) {
    phase = next;
    isExtension = false;
    phaseStartedAt = at;
    phaseDuration = duration;
    pausedRemaining.reset();
    endsAt.reset();
    if (next != Phase::ready) endsAt = at + seconds(duration);
}

FocusSession::Phase FocusSession::nextBreak() const {
    const bool isLong = plan.breakMinutes <= longestBreakWithLongOnes && plan.longBreakEvery &&
                        round % std::max(*plan.longBreakEvery, 1) == 0;
    return isLong ? Phase::longBreak : Phase::shortBreak;
}

int FocusSession::minutesOf(Phase breakPhase) const {
    return breakPhase == Phase::longBreak ? longBreakFactor * plan.breakMinutes : plan.breakMinutes;
}

void FocusSession::endFocus(Instant at) {
    const Phase next = nextBreak();
    begin(next, at, minutesOf(next) * 60.0);
}

}  // namespace tendel

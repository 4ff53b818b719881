#pragma once

#include <string>

#include "focus/FocusSession.h"

namespace tendel {

// A focus session in words. All of them change at the whole minutes and, in the last minute, at the
// whole seconds before the phase's end.

// "12 min" rounded up, "45 s" in the last minute.
std::string remainingText(double seconds);
// "24:59", "0:07", rounded up to the whole second, so that 0:00 is the end itself.
std::string clockText(double seconds);
// "Focusing", "Five more minutes", "Break", "Long break", "Paused", "Ready".
std::string phaseText(const FocusSession& session);
// What follows the phase: "a 5 min break", "a 15 min long break", "round 3".
std::string nextText(const FocusSession& session);
// "Focusing · round 2 · 12 min left · then a 5 min break", "Ready for round 3".
std::string statusText(const FocusSession& session, Instant now);

}  // namespace tendel

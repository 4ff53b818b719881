#pragma once

#include <array>
#include <string_view>

#include "base/Calendar.h"

namespace tendel {

// How long reminders can be paused, in the order of the menu.
enum class PauseOption { minutes30, hour1, hours2, untilTomorrow };

inline constexpr std::array pauseOptions{PauseOption::minutes30, PauseOption::hour1,
                                         PauseOption::hours2, PauseOption::untilTomorrow};
inline constexpr std::string_view pauseTitle = "Pause Reminders";
inline constexpr std::string_view resumeTitle = "Resume Reminders";

// "Pause for 30 Minutes" …
std::string_view title(PauseOption option);
// When a pause chosen at `now` ends.
Instant pauseEnd(PauseOption option, Instant now, const Calendar& calendar);

}  // namespace tendel

#include "reminders/PauseOption.h"

namespace tendel {

std::string_view title(PauseOption option) {
    switch (option) {
        case PauseOption::minutes30:
            return "Pause for 30 Minutes";
        case PauseOption::hour1:
            return "Pause for 1 Hour";
        case PauseOption::hours2:
            return "Pause for 2 Hours";
        case PauseOption::untilTomorrow:
            return "Pause Until Tomorrow";
    }
    return {};
}

Instant pauseEnd(PauseOption option, Instant now, const Calendar& calendar) {
    switch (option) {
        case PauseOption::minutes30:
            return now + std::chrono::minutes(30);
        case PauseOption::hour1:
            return now + std::chrono::hours(1);
        case PauseOption::hours2:
            return now + std::chrono::hours(2);
        case PauseOption::untilTomorrow:
            return calendar.day(now).end;
    }
    return now;
}

}  // namespace tendel

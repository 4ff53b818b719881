#include "model/WorkingHours.h"

namespace tendel {

bool WorkingHours::contains(Instant t, const Calendar& calendar) const {
    const DayInterval day = calendar.day(t);
    if (!workdays.contains(day.weekday)) return false;
    return calendar.time(day, start.hour, start.minute) <= t &&
           t < calendar.time(day, end.hour, end.minute);
}

}  // namespace tendel

#pragma once

#include <set>

#include "base/Calendar.h"
#include "model/TimeOfDay.h"

namespace tendel {

// When the user works: the same hours on each workday. Work reminders fire inside, private ones
// outside. Hours do not wrap past midnight: with `end` not after `start` no moment is inside.
struct WorkingHours {
    TimeOfDay start{9, 0};
    TimeOfDay end{17, 0};                   // exclusive
    std::set<int> workdays{2, 3, 4, 5, 6};  // 1 = Sunday … 7 = Saturday

    // 9:00 to 17:00, Monday to Friday.
    static WorkingHours standard() { return {}; }

    bool contains(Instant t, const Calendar& calendar) const;

    friend bool operator==(const WorkingHours&, const WorkingHours&) = default;
};

}  // namespace tendel

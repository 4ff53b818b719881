#pragma once

#include <string>

#include "base/Calendar.h"
#include "reminders/ReminderStatus.h"

namespace tendel {

// "every 45 min", "every hour", "every 2 h", "once a day".
std::string intervalText(int intervalMinutes);
// A length: "20 s", "3 min", "1 min 30 s", "2 h".
std::string lengthText(int seconds);
// What a reminder will do, as one sentence: "Every 45 minutes from 9:00, next today at 14:15".
// One that never fires answers the status's short warning instead.
std::string sentence(const Reminder& reminder, const ReminderStatus& status, Instant now,
                     const Calendar& calendar);

}  // namespace tendel

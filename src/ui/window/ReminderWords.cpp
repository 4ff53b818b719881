#include "ui/window/ReminderWords.h"

#include <algorithm>

namespace tendel {

namespace {

constexpr int minutesPerHour = 60;
constexpr int minutesPerDay = 24 * minutesPerHour;

std::string longIntervalText(int minutes) {
    if (minutes >= minutesPerDay) return "Once a day at ";
    if (minutes == minutesPerHour) return "Every hour from ";
    if (minutes % minutesPerHour == 0)
        return "Every " + std::to_string(minutes / minutesPerHour) + " hours from ";
    if (minutes == 1) return "Every minute from ";
    return "Every " + std::to_string(minutes) + " minutes from ";
}

std::string whenText(Instant t, Instant now, const Calendar& calendar) {
    const DayInterval today = calendar.day(now);
    const std::string time = calendar.formatTime(t);
    if (today.contains(t)) return "today at " + time;
    if (calendar.dayAfter(today).contains(t)) return "tomorrow at " + time;
    return calendar.formatWeekday(t) + " at " + time;
}

}  // namespace

std::string intervalText(int intervalMinutes) {
    const int minutes = std::max(intervalMinutes, 1);
    if (minutes >= minutesPerDay) return "once a day";
    if (minutes == minutesPerHour) return "every hour";
    if (minutes % minutesPerHour == 0)
        return "every " + std::to_string(minutes / minutesPerHour) + " h";
    if (minutes == 1) return "every minute";
    return "every " + std::to_string(minutes) + " min";
}

std::string lengthText(int seconds) {
    const int minutes = seconds / 60;
    const int rest = seconds % 60;
    if (minutes == 0) return std::to_string(rest) + " s";
    if (rest == 0 && minutes % minutesPerHour == 0)
        return std::to_string(minutes / minutesPerHour) + " h";
    if (rest == 0) return std::to_string(minutes) + " min";
    return std::to_string(minutes) + " min " + std::to_string(rest) + " s";
}

std::string sentence(const Reminder& reminder, const ReminderStatus& status, Instant now,
                     const Calendar& calendar) {
    if (status.state == ReminderStatus::Case::neverFires) return status.editorWarning();
    const std::string chain = longIntervalText(std::max(reminder.intervalMinutes, 1)) +
                              calendar.formatTime(reminder.startHour, reminder.startMinute);
    if (status.state == ReminderStatus::Case::off) return chain + ", when it is on";
    return chain + ", next " + whenText(status.next, now, calendar);
}

}  // namespace tendel

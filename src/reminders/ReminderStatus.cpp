#include "reminders/ReminderStatus.h"

namespace tendel {

ReminderStatus ReminderStatus::of(const Reminder& reminder, Instant now, ScheduleSearch& search) {
    ReminderStatus status;
    status.kind = reminder.kind();
    if (!reminder.isOn) return status;
    const auto next = search.nextFireDate(reminder, now);
    if (!next) {
        status.state = Case::neverFires;
        return status;
    }
    status.state = Case::next;
    status.next = *next;
    const auto side = windowSide(status.kind);
    const Instant ownNext = search.nextFireDate(ReminderSchedule::of(reminder), now);
    if (!search.isOpen(side, ownNext))
        status.held =
            status.kind == ReminderKind::work ? Hold::untilWorkStarts : Hold::untilWorkEnds;
    return status;
}

std::string ReminderStatus::text(Instant now, const WorkingHours& hours,
                                 const Calendar& calendar) const {
    const auto timeText = [&](TimeOfDay time) {
        return calendar.formatTime(time.hour, time.minute);
    };
    if (state == Case::off) return {};
    if (state == Case::neverFires) {
        if (kind == ReminderKind::private_)
            return "Never fires: none of its times are outside working hours";
        return "Never fires: none of its times are within working hours (" + timeText(hours.start) +
               "–" + timeText(hours.end) + ")";
    }
    const DayInterval today = calendar.day(now);
    const std::string time = calendar.formatTime(next);
    if (today.contains(next)) {
        if (held == Hold::untilWorkStarts)
            return time + " · work starts at " + timeText(hours.start);
        if (held == Hold::untilWorkEnds) return time + " · work ends at " + timeText(hours.end);
        return time;
    }
    if (calendar.dayAfter(today).contains(next)) return "Next tomorrow at " + time;
    return calendar.formatWeekdayShort(next) + " at " + time;
}

std::string ReminderStatus::editorWarning() const {
    if (state != Case::neverFires) return {};
    return kind == ReminderKind::work ? "Never fires outside working hours"
                                      : "Never fires on workdays";
}

}  // namespace tendel

#include "reminders/ReminderSchedule.h"

#include <algorithm>

namespace tendel {

namespace {

// How far a time within a window, and an opening of one, are searched.
constexpr Duration horizon = std::chrono::days(8);
constexpr int lastOpeningOffset = 7;

}  // namespace

ReminderSchedule ReminderSchedule::of(const Reminder& reminder) {
    return {{std::clamp(reminder.startHour, 0, 23), std::clamp(reminder.startMinute, 0, 59)},
            std::max(reminder.intervalMinutes, 1)};
}

ReminderWindow ReminderWindow::of(ReminderKind kind, const WorkingHours& hours) {
    return {windowSide(kind), hours};
}

ReminderWindow::Side windowSide(ReminderKind kind) {
    return kind == ReminderKind::private_ ? ReminderWindow::Side::outsideWorkingHours
                                          : ReminderWindow::Side::workingHours;
}

ScheduleSearch::ScheduleSearch(const Calendar& calendar, const WorkingHours& hours)
    : calendar_(calendar), hours_(hours) {}

Instant ScheduleSearch::nextFireDate(const ReminderSchedule& schedule, Instant t) {
    const DayInterval& day = dayOf(t).interval;
    const Instant first = calendar_.time(day, schedule.start.hour, schedule.start.minute);
    if (t < first) return first;
    const Duration step = std::chrono::minutes(schedule.intervalMinutes);
    const Instant candidate = first + ((t - first) / step + 1) * step;
    // No chain crosses midnight.
    if (candidate < day.end) return candidate;
    const DayInterval& nextDay = dayAt(CivilDay{int(day.day) + 1}).interval;
    return calendar_.time(nextDay, schedule.start.hour, schedule.start.minute);
}

bool ScheduleSearch::isOpen(ReminderWindow::Side side, Instant t) {
    const Day& day = dayOf(t);
    const bool isWorkTime = day.isWorkday && day.workStart <= t && t < day.workEnd;
    return isWorkTime == (side == ReminderWindow::Side::workingHours);
}

std::optional<Instant> ScheduleSearch::nextOpening(ReminderWindow::Side side, Instant t) {
    if (isOpen(side, t)) return t;
    const Day& today = dayOf(t);
    if (side == ReminderWindow::Side::outsideWorkingHours) return today.workEnd;
    for (int offset = 0; offset <= lastOpeningOffset; ++offset) {
        const Day& day = dayAt(CivilDay{int(today.interval.day) + offset});
        if (day.isWorkday && day.workStart >= t && isOpen(side, day.workStart))
            return day.workStart;
    }
    return std::nullopt;
}

std::optional<Instant> ScheduleSearch::nextFireDate(const ReminderSchedule& schedule,
                                                    ReminderWindow::Side side, Instant t) {
    const Instant end = t + horizon;
    Instant candidate = nextFireDate(schedule, t);
    while (candidate < end) {
        if (isOpen(side, candidate)) return candidate;
        const auto opening = nextOpening(side, candidate);
        if (!opening) return std::nullopt;
        // A second earlier, so that a time exactly on the opening counts.
        candidate = nextFireDate(schedule, *opening - std::chrono::seconds(1));
    }
    return std::nullopt;
}

std::optional<Instant> ScheduleSearch::nextFireDate(const Reminder& reminder, Instant t) {
    return nextFireDate(ReminderSchedule::of(reminder), windowSide(reminder.kind()), t);
}

const ScheduleSearch::Day& ScheduleSearch::dayOf(Instant t) {
    const auto known =
        std::ranges::find_if(days_, [t](const Day& day) { return day.interval.contains(t); });
    return known != days_.end() ? *known : keep(calendar_.day(t));
}

const ScheduleSearch::Day& ScheduleSearch::dayAt(CivilDay date) {
    const auto known =
        std::ranges::find_if(days_, [date](const Day& day) { return day.interval.day == date; });
    return known != days_.end() ? *known : dayOf(calendar_.day(date).start);
}

const ScheduleSearch::Day& ScheduleSearch::keep(const DayInterval& interval) {
    return days_.emplace_back(
        Day{.interval = interval,
            .isWorkday = hours_.workdays.contains(interval.weekday),
            .workStart = calendar_.time(interval, hours_.start.hour, hours_.start.minute),
            .workEnd = calendar_.time(interval, hours_.end.hour, hours_.end.minute)});
}

}  // namespace tendel

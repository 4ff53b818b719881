#pragma once

#include <deque>
#include <optional>

#include "base/Calendar.h"
#include "model/Reminder.h"
#include "model/WorkingHours.h"

namespace tendel {

// When a reminder fires, before its window: at `start`, then every `intervalMinutes` until the end
// of the day.
struct ReminderSchedule {
    TimeOfDay start;
    int intervalMinutes = 1;  // at least 1

    static ReminderSchedule of(const Reminder& reminder);

    friend bool operator==(const ReminderSchedule&, const ReminderSchedule&) = default;
};

// The part of the week in which a reminder may fire.
struct ReminderWindow {
    enum class Side { workingHours, outsideWorkingHours };
    Side side = Side::workingHours;
    WorkingHours hours;

    static ReminderWindow of(ReminderKind kind, const WorkingHours& hours);

    friend bool operator==(const ReminderWindow&, const ReminderWindow&) = default;
};

// Answers when reminders fire, for one calendar and one setting of the working hours. Days and
// their bounds are asked of the calendar once and kept, so that a look over a thousand reminders is
// integer arithmetic; make a new one when the zone or the hours change, and for every look of the
// scheduler. Main thread only; the calendar must outlive it.
class ScheduleSearch {
public:
    ScheduleSearch(const Calendar& calendar, const WorkingHours& hours);

    // The daily chain's next time strictly after `t`.
    Instant nextFireDate(const ReminderSchedule& schedule, Instant t);
    // Whether a reminder of this side of the working hours may fire at `t`.
    bool isOpen(ReminderWindow::Side side, Instant t);
    // The first moment at or after `t` at which the window is open, searched for eight days.
    std::optional<Instant> nextOpening(ReminderWindow::Side side, Instant t);
    // The chain's next time after `t` that is within the window, searched for eight days.
    std::optional<Instant> nextFireDate(const ReminderSchedule& schedule, ReminderWindow::Side side,
                                        Instant t);
    // Both by the reminder's own schedule and kind.
    std::optional<Instant> nextFireDate(const Reminder& reminder, Instant t);

private:
    struct Day {
        DayInterval interval;
        bool isWorkday = false;
        Instant workStart;
        Instant workEnd;
    };
    const Day& dayOf(Instant t);
    const Day& dayAt(CivilDay date);
    const Day& keep(const DayInterval& interval);

    const Calendar& calendar_;
    WorkingHours hours_;
    std::deque<Day> days_;  // those asked for so far; a deque, so that references stay valid
};

ReminderWindow::Side windowSide(ReminderKind kind);

}  // namespace tendel

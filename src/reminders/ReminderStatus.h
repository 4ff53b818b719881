#pragma once

#include <optional>
#include <string>

#include "reminders/ReminderSchedule.h"

namespace tendel {

// What a reminder's card says about its next time.
struct ReminderStatus {
    enum class Case { next, neverFires, off };
    enum class Hold { untilWorkStarts, untilWorkEnds };

    Case state = Case::off;
    Instant next;              // of `next`
    std::optional<Hold> held;  // of `next`: it waits for its window
    ReminderKind kind = ReminderKind::work;

    static ReminderStatus of(const Reminder& reminder, Instant now, ScheduleSearch& search);

    // The line on the card; empty when the reminder is off.
    std::string text(Instant now, const WorkingHours& hours, const Calendar& calendar) const;
    // The short form of "never fires" in the editor; empty for the other cases.
    std::string editorWarning() const;

    friend bool operator==(const ReminderStatus&, const ReminderStatus&) = default;
};

}  // namespace tendel

#include "reminders/Upcoming.h"

#include "library/ReminderDisplay.h"

namespace tendel {

Upcoming::Item Upcoming::Item::of(const Reminder& reminder) {
    return {.id = reminder.id,
            .title = reminder.displayTitle(),
            .details = reminder.displayDetails(),
            .durationSeconds = reminder.durationSeconds,
            .skipsWhenAway = reminder.skipsWhenAway(),
            .missedAt = {},
            .keptReason = {},
            .systemImage = displaySymbol(reminder),
            .animation = displayAnimation(reminder)};
}

std::string Upcoming::title() const {
    std::string joined;
    for (const Item& item : items) {
        if (!joined.empty()) joined += " · ";
        joined += item.title;
    }
    return joined;
}

}  // namespace tendel

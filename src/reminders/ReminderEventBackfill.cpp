#include "reminders/ReminderEventBackfill.h"

#include <vector>

namespace tendel {

void backfillEventTitles(Store& store) {
    std::vector<ReminderEvent> named;
    for (ReminderEvent& event : store.eventsWithoutTitle()) {
        const Reminder* reminder = event.reminder ? store.find(*event.reminder) : nullptr;
        if (!reminder) continue;
        event.reminderTitle = reminder->displayTitle();
        event.kindRaw = rawValue(reminder->kind());
        named.push_back(std::move(event));
    }
    if (named.empty()) return;
    // What fails now is found again at the next start.
    static_cast<void>(store.save([&](Store::Writer& writer) {
        for (const ReminderEvent& event : named)
            writer.update(event);
    }));
}

}  // namespace tendel

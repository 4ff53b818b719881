#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Instant.h"
#include "model/ExerciseAnimation.h"
#include "model/KeptReason.h"
#include "model/Reminder.h"

namespace tendel {

// Reminders that are due at one instant.
struct Upcoming {
    struct Item {
        ReminderId id;
        std::string title;
        std::string details;
        std::optional<int> durationSeconds;  // present: a timed break
        bool skipsWhenAway = false;
        std::optional<Instant> missedAt;  // when it fell due while it could not be shown
        std::optional<KeptReason> keptReason;
        std::string systemImage;
        std::optional<ExerciseAnimation> animation;

        // What a reminder shows when it is due.
        static Item of(const Reminder& reminder);

        friend bool operator==(const Item&, const Item&) = default;
    };

    std::vector<Item> items;
    Instant fireDate;

    // The items' titles, joined with " · ".
    std::string title() const;

    friend bool operator==(const Upcoming&, const Upcoming&) = default;
};

// Shows due reminders; the scheduler hands them over, the alert controller implements it.
class ReminderAlertPresenting {
public:
    virtual ~ReminderAlertPresenting() = default;
    // Shows each item as an alert of its own. Items with `missedAt` or `keptReason` are shown as
    // late.
    virtual void present(const Upcoming& upcoming) = 0;
    // Takes every reminder alert off the screen, recording nothing.
    virtual void dismissAll() = 0;
};

}  // namespace tendel

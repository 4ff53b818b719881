#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Instant.h"
#include "model/Reminder.h"

namespace tendel {

// What became of one alert.
enum class Outcome {
    done,        // the user answered done, or a timed break ran out
    snoozed,     //
    skipped,     //
    expired,     // hid itself unanswered; counted as missed
    breakTaken,  // stepping away, or a break the user had anyway, was counted
};

// The stored text: the case's name.
std::string_view rawValue(Outcome outcome);
// An unknown text reads as expired: what cannot be read counts as missed, never as done.
Outcome outcome(std::string_view raw);

// One answered or missed alert. Keeps its reminder's title and kind, so that history outlives the
// reminder.
struct ReminderEvent {
    std::int64_t id = 0;                 // the store's; 0 before the first save
    std::optional<ReminderId> reminder;  // empty once the reminder is deleted
    Instant fireDate;                    // when the alert was due, not when it was shown
    Instant respondedAt;                 // when the outcome happened
    std::string outcomeRaw;
    std::string reminderTitle;  // the reminder's display title when this was recorded
    std::string kindRaw = "work";

    ReminderEvent() = default;
    // A record of `of`, with its title and kind copied in.
    ReminderEvent(const Reminder& of, Instant fireDate, Outcome outcome, Instant respondedAt);

    Outcome outcome() const { return tendel::outcome(outcomeRaw); }
    ReminderKind kind() const { return reminderKind(kindRaw); }

    friend bool operator==(const ReminderEvent&, const ReminderEvent&) = default;
};

}  // namespace tendel

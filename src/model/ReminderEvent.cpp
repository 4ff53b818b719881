#include "model/ReminderEvent.h"

#include <array>

namespace tendel {

namespace {
constexpr std::array<std::string_view, 5> outcomeNames{"done", "snoozed", "skipped", "expired",
                                                       "breakTaken"};
}  // namespace

std::string_view rawValue(Outcome outcome) {
    return outcomeNames[static_cast<std::size_t>(outcome)];
}

Outcome outcome(std::string_view raw) {
    for (std::size_t i = 0; i < outcomeNames.size(); ++i)
        if (outcomeNames[i] == raw) return static_cast<Outcome>(i);
    return Outcome::expired;
}

ReminderEvent::ReminderEvent(const Reminder& of, Instant due, Outcome outcome, Instant responded)
    : reminder(of.id),
      fireDate(due),
      respondedAt(responded),
      outcomeRaw(rawValue(outcome)),
      reminderTitle(of.displayTitle()),
      kindRaw(rawValue(of.kind())) {}

}  // namespace tendel

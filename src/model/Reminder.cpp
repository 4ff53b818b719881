#include "model/Reminder.h"

namespace tendel {

std::string_view rawValue(ReminderKind kind) {
    return kind == ReminderKind::private_ ? "private" : "work";
}

ReminderKind reminderKind(std::string_view raw) {
    return raw == "private" ? ReminderKind::private_ : ReminderKind::work;
}

bool Reminder::skipsWhenAway() const {
    if (skipsWhenAwayChoice) return *skipsWhenAwayChoice;
    if (isBreakSuggestion) return *isBreakSuggestion;
    return durationSeconds.has_value();
}

std::string Reminder::displayTitle() const {
    return title.empty() ? "Reminder" : title;
}

std::string Reminder::displayDetails() const {
    if (details.empty() || details == detailsPlaceholder) return "Time for a quick break.";
    return details;
}

Reminder Reminder::duplicated(Instant now) const {
    Reminder copy = *this;
    copy.id = {};
    copy.createdAt = now;
    return copy;
}

}  // namespace tendel

#include "library/ReminderDisplay.h"

#include "library/ReminderTemplate.h"

namespace tendel {

std::string suggestedSymbol(std::string_view title) {
    const ReminderTemplate* entry = libraryMatch(title);
    return std::string(entry ? entry->systemImage : "bell");
}

std::optional<ExerciseAnimation> suggestedAnimation(std::string_view title) {
    const ReminderTemplate* entry = libraryMatch(title);
    return entry ? entry->animation : std::nullopt;
}

std::string displaySymbol(const Reminder& reminder) {
    return reminder.symbolName ? *reminder.symbolName : suggestedSymbol(reminder.title);
}

std::optional<ExerciseAnimation> displayAnimation(const Reminder& reminder) {
    if (reminder.animationChoice) {
        if (*reminder.animationChoice == "none") return std::nullopt;
        if (const auto chosen = exerciseAnimation(*reminder.animationChoice)) return chosen;
    }
    return suggestedAnimation(reminder.title);
}

}  // namespace tendel

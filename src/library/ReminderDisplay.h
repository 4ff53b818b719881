#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/ExerciseAnimation.h"
#include "model/Reminder.h"

namespace tendel {

// The symbol and the figure that the library suggests for a title ("bell" and none for an unknown
// one).
std::string suggestedSymbol(std::string_view title);
std::optional<ExerciseAnimation> suggestedAnimation(std::string_view title);

// What a reminder shows: the user's choice, else what the library suggests for its title.
std::string displaySymbol(const Reminder& reminder);
std::optional<ExerciseAnimation> displayAnimation(const Reminder& reminder);

}  // namespace tendel

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Calendar.h"
#include "model/DailyGoal.h"

namespace tendel {

// Whose goal it is that is kept.
enum class GoalDay { none, today, another };

// A goal without a text is none.
GoalDay goalDay(const std::optional<DailyGoal>& goal, Instant now, const Calendar& calendar);
// "Today's goal", "Yesterday's goal", within a week "Thursday's goal", else "Goal of 12 November".
std::string goalCaption(const DailyGoal& goal, Instant now, const Calendar& calendar);
// Today's goal with that text; it takes the place of `previous`. Other words for today's goal leave
// it done when it was. Absent when the text says nothing.
std::optional<DailyGoal> goalForToday(std::string_view text,
                                      const std::optional<DailyGoal>& previous, Instant now,
                                      const Calendar& calendar);

}  // namespace tendel

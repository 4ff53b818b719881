#include "stats/DailyGoals.h"

#include "base/Text.h"

namespace tendel {

GoalDay goalDay(const std::optional<DailyGoal>& goal, Instant now, const Calendar& calendar) {
    if (!goal || trimmed(goal->text).empty()) return GoalDay::none;
    return calendar.day(now).contains(goal->day) ? GoalDay::today : GoalDay::another;
}

std::string goalCaption(const DailyGoal& goal, Instant now, const Calendar& calendar) {
    const int daysAgo = int(calendar.day(now).day) - int(calendar.day(goal.day).day);
    if (daysAgo == 0) return "Today's goal";
    if (daysAgo == 1) return "Yesterday's goal";
    if (daysAgo > 1 && daysAgo < 7) return calendar.formatWeekday(goal.day) + "'s goal";
    return "Goal of " + calendar.formatDate(goal.day);
}

std::optional<DailyGoal> goalForToday(std::string_view text,
                                      const std::optional<DailyGoal>& previous, Instant now,
                                      const Calendar& calendar) {
    const std::string_view words = trimmed(text);
    if (words.empty()) return std::nullopt;
    const bool isToday = goalDay(previous, now, calendar) == GoalDay::today;
    return DailyGoal{.text = std::string(words),
                     .day = std::chrono::floor<std::chrono::seconds>(now),
                     .isDone = isToday && previous->isDone};
}

}  // namespace tendel

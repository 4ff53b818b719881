#include "menubar/NextReminderCard.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "menubar/Countdown.h"

namespace tendel {

namespace {

enum class Distance { today, tomorrow, later };

Distance distance(Instant t, Instant now, const Calendar& calendar) {
    const DayInterval today = calendar.day(now);
    // What lies in the past belongs to today: it is due.
    if (t < today.end) return Distance::today;
    return t < calendar.dayAfter(today).end ? Distance::tomorrow : Distance::later;
}

std::string onWeekday(Instant t, const Calendar& calendar) {
    return calendar.formatWeekdayShort(t) + " " + calendar.formatTime(t);
}

}  // namespace

std::string whenText(Instant fireDate, Instant now, const Calendar& calendar) {
    switch (distance(fireDate, now, calendar)) {
        case Distance::today:
            return "in " + countdownText(now, fireDate) + " · " + calendar.formatTime(fireDate);
        case Distance::tomorrow:
            return "tomorrow " + calendar.formatTime(fireDate);
        case Distance::later:
            break;
    }
    return onWeekday(fireDate, calendar);
}

std::string pausedTitle(Instant until, Instant now, const Calendar& calendar) {
    const std::string paused = "Paused until ";
    switch (distance(until, now, calendar)) {
        case Distance::today:
            return paused + calendar.formatTime(until);
        case Distance::tomorrow:
            return paused + "tomorrow";
        case Distance::later:
            break;
    }
    return paused + onWeekday(until, calendar);
}

double pauseProgress(std::optional<Instant> startedAt, Instant until, Instant now) {
    if (!startedAt) return 1;
    const double length = toSeconds(until - *startedAt);
    return length > 0 ? std::clamp(toSeconds(until - now) / length, 0.0, 1.0) : 0;
}

NextReminderCard NextReminderCard::of(Input input, const Calendar& calendar) {
    NextReminderCard card{.title = "No upcoming reminders", .beads = std::move(input.beads)};
    if (input.pausedUntil) {
        card.title = pausedTitle(*input.pausedUntil, input.now, calendar);
        card.pauseProgress =
            tendel::pauseProgress(input.pauseStartedAt, *input.pausedUntil, input.now);
    } else if (input.upcoming) {
        card.title = input.upcoming->title();
        if (!input.upcoming->items.empty()) card.symbol = input.upcoming->items.front().systemImage;
        card.when = whenText(input.upcoming->fireDate, input.now, calendar);
    }
    if (!card.beads.empty())
        card.today = "Today " + std::to_string(std::ranges::count(card.beads, Bead::done)) +
                     " of " + std::to_string(card.beads.size()) + " done";
    if (input.streakDays > 0) card.streak = std::to_string(input.streakDays) + "-day streak";
    return card;
}

}  // namespace tendel

#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Calendar.h"
#include "reminders/Upcoming.h"

namespace tendel {

// The card at the top of the panel: what comes next, or the pause, and how today went so far.
struct NextReminderCard {
    // One time of today at which a reminder fires.
    enum class Bead { done, missed, coming };

    struct Input {
        Instant now{};  // as the scheduler tells it
        std::optional<Upcoming> upcoming{};
        std::optional<Instant> pauseStartedAt{};
        std::optional<Instant> pausedUntil{};
        std::vector<Bead> beads{};    // by time
        std::int64_t streakDays = 0;  // good days in a row
    };

    std::string title{};   // "Stretch · Water", "Paused until 14:30", "No upcoming reminders"
    std::string symbol{};  // of what comes next; empty when nothing does
    std::string when{};    // "in 12m · 10:30"; empty in a pause and when nothing comes
    std::optional<double> pauseProgress{};  // of the pause what is left, 0–1
    std::string today{};                    // "Today 3 of 8 done"; empty on a day without reminders
    std::string streak{};                   // "4-day streak"; empty without one
    std::vector<Bead> beads{};

    static NextReminderCard of(Input input, const Calendar& calendar);

    friend bool operator==(const NextReminderCard&, const NextReminderCard&) = default;
};

// "in 12m · 10:30" today, "tomorrow 10:30", and "Wed 10:30" later.
std::string whenText(Instant fireDate, Instant now, const Calendar& calendar);
// "Paused until 14:30" today, "Paused until tomorrow", and "Paused until Wed 14:30" later.
std::string pausedTitle(Instant until, Instant now, const Calendar& calendar);
// What is left of a pause, 0–1; all of it when nobody knows when it began.
double pauseProgress(std::optional<Instant> startedAt, Instant until, Instant now);

}  // namespace tendel

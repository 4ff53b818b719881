#include "menubar/NextReminderCard.h"

#include <gtest/gtest.h>

namespace tendel {
namespace {

using namespace std::chrono_literals;

// The clocks go forward on the 29th, a Sunday.
const Calendar calendar("Europe/Berlin", "en_GB");

Instant at(std::string_view time) {
    return parseIso8601("2026-03-" + std::string(time) + ":00+01:00").value();
}

TEST(NextReminderCardTest, TellsTodayFromTomorrowAndLaterByTheCalendar) {
    struct Row {
        std::string_view now, then, when, paused;
    };
    for (const auto& [now, then, when, paused] : {
             Row{"27T10:18", "27T10:30", "in 12m · 10:30", "Paused until 10:30"},
             Row{"27T10:18", "27T10:00", "in 0m · 10:00", "Paused until 10:00"},
             Row{"27T23:50", "28T00:00", "tomorrow 00:00", "Paused until tomorrow"},
             Row{"27T00:00", "28T23:59", "tomorrow 23:59", "Paused until tomorrow"},
             Row{"27T23:50", "29T00:00", "Sun 00:00", "Paused until Sun 00:00"},
             Row{"28T12:00", "29T22:59", "tomorrow 23:59", "Paused until tomorrow"},
             Row{"28T12:00", "29T23:00", "Mon 00:00", "Paused until Mon 00:00"},
         }) {
        EXPECT_EQ(whenText(at(then), at(now), calendar), when);
        EXPECT_EQ(pausedTitle(at(then), at(now), calendar), paused);
    }
}

TEST(NextReminderCardTest, PutsAPauseBeforeWhatComesAndAnEmptyDayAside) {
    using enum NextReminderCard::Bead;
    NextReminderCard::Input input{.now = at("27T10:18")};
    EXPECT_EQ(NextReminderCard::of(input, calendar),
              (NextReminderCard{.title = "No upcoming reminders"}));
    input = {.now = input.now,
             .upcoming = Upcoming{std::vector<Upcoming::Item>(1), at("27T10:30")},
             .beads = {done, missed, done, coming},
             .streakDays = 4};
    input.upcoming->items[0].title = "Stretch";
    NextReminderCard expected{.title = "Stretch",
                              .when = "in 12m · 10:30",
                              .today = "Today 2 of 4 done",
                              .streak = "4-day streak",
                              .beads = input.beads};
    EXPECT_EQ(NextReminderCard::of(input, calendar), expected);
    input.pausedUntil = at("27T10:36");
    expected.title = "Paused until 10:36";
    expected.when = "";
    expected.pauseProgress = 1;
    EXPECT_EQ(NextReminderCard::of(input, calendar), expected) << "nobody knows since when";
    for (const auto& [startedAt, left] :
         {std::pair{"27T10:00", 0.5}, {"27T10:20", 1.0}, {"27T10:36", 0.0}}) {
        input.pauseStartedAt = at(startedAt);
        EXPECT_EQ(NextReminderCard::of(input, calendar).pauseProgress, left);
    }
}

}  // namespace
}  // namespace tendel

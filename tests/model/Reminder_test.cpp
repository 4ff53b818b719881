#include "model/Reminder.h"

#include <gtest/gtest.h>

#include "model/AlertStyle.h"
#include "model/KeptReason.h"
#include "model/ReminderEvent.h"

namespace tendel {
namespace {

TEST(ReminderTest, SteppingAwayCountsByTheChoiceElseTheSuggestionElseTheBreak) {
    struct Case {
        std::optional<bool> choice;
        std::optional<bool> isBreakSuggestion;
        std::optional<int> duration;
        bool expected;
    };
    const Case cases[] = {
        {{}, {}, {}, false},     {{}, {}, 300, true},       {{}, false, 300, false},
        {{}, true, {}, true},    {false, true, 300, false}, {true, false, {}, true},
        {false, {}, 300, false},
    };
    for (const Case& c : cases) {
        Reminder reminder;
        reminder.skipsWhenAwayChoice = c.choice;
        reminder.isBreakSuggestion = c.isBreakSuggestion;
        reminder.durationSeconds = c.duration;
        EXPECT_EQ(reminder.skipsWhenAway(), c.expected) << &c - cases;
    }
}

TEST(ReminderTest, UntouchedTextsGiveWayAlsoInCopiesAndRecords) {
    Reminder reminder;
    reminder.id = {7};
    reminder.setKind(ReminderKind::private_);
    for (const auto& [text, expected] : {std::pair("", "Time for a quick break."),
                                         {"Description...", "Time for a quick break."},
                                         {"Description", "Description"}}) {
        reminder.details = text;
        EXPECT_EQ(reminder.displayDetails(), expected);
    }
    EXPECT_EQ(reminder.displayTitle(), "Reminder");
    EXPECT_EQ(ReminderEvent(reminder, {}, Outcome::done, {}).reminderTitle, "Reminder");
    const Instant now(std::chrono::hours(500'000));
    Reminder copy = reminder;
    copy.id = {};
    copy.createdAt = now;
    EXPECT_EQ(reminder.duplicated(now), copy);
}

TEST(ReminderTest, UnknownStoredTextsAndNumbersFallBack) {
    for (const char* raw : {"Work", "Private", "", "garden"})
        EXPECT_EQ(reminderKind(raw), ReminderKind::work) << raw;
    for (const auto known :
         {Outcome::done, Outcome::snoozed, Outcome::skipped, Outcome::expired, Outcome::breakTaken})
        EXPECT_EQ(outcome(rawValue(known)), known);
    for (const char* raw : {"missed", "Done", ""})
        EXPECT_EQ(outcome(raw), Outcome::expired) << raw;
    EXPECT_EQ(keptReason(4), std::nullopt);
    EXPECT_EQ(keptReason(-1), std::nullopt);
    EXPECT_EQ(autoHideTime(*alertAutoHide(0)), std::nullopt);
}

}  // namespace
}  // namespace tendel

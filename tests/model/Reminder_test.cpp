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

TEST(ReminderTest, UntouchedTextsGiveWayToStandIns) {
    const char* details[][2] = {
        {"", "Time for a quick break."},    {"Description...", "Time for a quick break."},
        {"Description", "Description"},     {"description...", "description..."},
        {"Look far away", "Look far away"},
    };
    Reminder reminder;
    EXPECT_EQ(reminder.displayTitle(), "Reminder");
    for (const auto& [text, expected] : details) {
        reminder.details = text;
        EXPECT_EQ(reminder.displayDetails(), expected);
    }
}

TEST(ReminderTest, CopyHasTheSameContentButItsOwnIdentity) {
    Reminder original;
    original.id = {7};
    original.kindRaw = "handmade";
    original.title = "Stretch";
    original.animationChoice = "none";
    original.isOn = false;
    const Instant now(std::chrono::hours(500'000));
    Reminder expected = original;
    expected.id = {};
    expected.createdAt = now;
    EXPECT_EQ(original.duplicated(now), expected);
}

TEST(ReminderTest, UnknownStoredTextsAndNumbersFallBack) {
    for (const char* raw : {"work", "Work", "Private", "", "garden"})
        EXPECT_EQ(reminderKind(raw), ReminderKind::work) << raw;
    EXPECT_EQ(reminderKind("private"), ReminderKind::private_);

    for (const auto known :
         {Outcome::done, Outcome::snoozed, Outcome::skipped, Outcome::expired, Outcome::breakTaken})
        EXPECT_EQ(outcome(rawValue(known)), known);
    EXPECT_EQ(rawValue(Outcome::breakTaken), "breakTaken");
    for (const char* raw : {"missed", "Done", ""})
        EXPECT_EQ(outcome(raw), Outcome::expired) << raw;

    EXPECT_EQ(keptReason(4), std::nullopt);
    EXPECT_EQ(keptReason(-1), std::nullopt);
    EXPECT_EQ(alertAutoHide(45), std::nullopt);
    EXPECT_EQ(autoHideTime(*alertAutoHide(0)), std::nullopt);
    EXPECT_EQ(autoHideTime(*alertAutoHide(60)), std::chrono::minutes(1));
}

TEST(ReminderEventTest, KeepsWhatItsReminderWasCalled) {
    Reminder reminder;
    reminder.id = {3};
    reminder.setKind(ReminderKind::private_);
    const Instant due(std::chrono::hours(1)), answered(std::chrono::hours(2));
    const ReminderEvent unnamed(reminder, due, Outcome::done, answered);
    reminder.title = "Water";
    const ReminderEvent named(reminder, due, Outcome::skipped, answered);
    EXPECT_EQ(unnamed.reminderTitle, "Reminder");
    EXPECT_EQ(named.reminderTitle, "Water");
    EXPECT_EQ(named.kindRaw, "private");
    EXPECT_EQ(named.outcomeRaw, "skipped");
    EXPECT_EQ(named.reminder, reminder.id);
    EXPECT_LT(named.fireDate, named.respondedAt);
}

}  // namespace
}  // namespace tendel

#include "library/ReminderTemplate.h"

#include <gtest/gtest.h>

#include <set>

#include "library/ReminderDisplay.h"

namespace tendel {
namespace {

TEST(ReminderTemplateTest, TitleNamesAnEntryByItsTitleElseByATagOfItsOwn) {
    const char* cases[][2] = {
        {" \tLOOK AWAY\n", "look-away"},
        {"Drínk wáter", "drink-water"},
        {"hydration", "drink-water"},
        {"screen", ""},  // three entries carry it
        {"Look", ""},    // a part of a title
        {"  ", ""},
        {"Feed the cat", ""},
    };
    for (const auto& [title, expected] : cases) {
        const ReminderTemplate* entry = libraryMatch(title);
        EXPECT_EQ(entry ? entry->id : "", expected) << title;
    }
}

TEST(ReminderTemplateTest, EveryEntryCanBeNamedAndMakesAReminderThatFires) {
    std::set<std::string_view> ids;
    for (const ReminderTemplate& entry : ReminderTemplate::library()) {
        EXPECT_TRUE(ids.insert(entry.id).second) << entry.id;
        EXPECT_EQ(libraryMatch(entry.title), &entry) << entry.id;
        // Within a working day of eight hours.
        EXPECT_LT(entry.startOffsetMinutes, entry.intervalMinutes) << entry.id;
        EXPECT_LE(entry.intervalMinutes, 480) << entry.id;
        EXPECT_FALSE(entry.details.empty() || entry.systemImage.empty()) << entry.id;
        EXPECT_LT(entry.durationSeconds.value_or(1), entry.intervalMinutes * 60) << entry.id;
    }
    EXPECT_EQ(ids.size(), 28u);
}

TEST(ReminderDisplayTest, ShowsTheChoiceElseWhatTheTitleSuggests) {
    struct Case {
        const char* title;
        std::optional<std::string> symbol;
        std::optional<std::string> animation;
        const char* expectedSymbol;
        std::optional<ExerciseAnimation> expectedAnimation;
    };
    const Case cases[] = {
        {"Neck rolls", {}, {}, "arrow.clockwise.circle", ExerciseAnimation::neck},
        {"Neck rolls", "star", "none", "star", std::nullopt},
        {"Neck rolls", {}, "squats", "arrow.clockwise.circle", ExerciseAnimation::squats},
        {"Neck rolls", {}, "juggling", "arrow.clockwise.circle", ExerciseAnimation::neck},
        {"Feed the cat", {}, {}, "bell", std::nullopt},
    };
    for (const Case& c : cases) {
        Reminder reminder;
        reminder.title = c.title;
        reminder.symbolName = c.symbol;
        reminder.animationChoice = c.animation;
        EXPECT_EQ(displaySymbol(reminder), c.expectedSymbol) << c.title;
        EXPECT_EQ(displayAnimation(reminder), c.expectedAnimation) << c.title;
    }
}

}  // namespace
}  // namespace tendel

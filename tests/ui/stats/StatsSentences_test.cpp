#include "ui/stats/StatsSentences.h"

#include <gtest/gtest.h>

#include "base/Iso8601.h"
#include "ui/stats/ChartScale.h"
#include "ui/theme/QtText.h"

namespace tendel {
namespace {

Instant at(std::string_view text) {
    return *parseIso8601(text);
}

TEST(StatsSentences, TellsTiles) {
    struct Case {
        StatsTally tally;
        std::int64_t focusSeconds;
        std::int64_t blocks;
        const char* figures;
        const char* notes;
        const char* spoken;  // of the first tile
    };
    const Case cases[] = {
        {{},
         0,
         0,
         "– | 1 day | – | –",
         "Nothing yet | Best 12 | None yet | Nothing yet",
         "Nothing done or missed yet. A break that you took counts as done."},
        {{.done = 0, .missed = 0, .snoozed = 2},
         59,
         0,
         "– | 1 day | <1 min | –",
         "Nothing yet | Best 12 | no block finished | 2 snoozed",
         "Nothing done or missed yet. A break that you took counts as done."},
        {{.done = 299, .missed = 1, .snoozed = 0},
         3600,
         1,
         "299 | 1 day | 1 h | 1",
         "of 300 · 100% | Best 12 | 1 block finished | 0 snoozed",
         "299 of 300 done, 100%. A break that you took counts as done."},
        {{.done = 29, .missed = 71, .snoozed = 5},
         45 * 3600 + 61,
         100,
         "29 | 1 day | 45 h 1 m | 71",
         "of 100 · 29% | Best 12 | 100 blocks finished | 5 snoozed",
         "29 of 100 done, 29%. A break that you took counts as done."},
        {{.done = 4, .missed = 0, .snoozed = 0},
         120 * 3600 + 1860,
         3,
         "4 | 1 day | 120 h | 0",
         "of 4 · 100% | Best 12 | 3 blocks finished | 0 snoozed",
         "4 of 4 done, 100%. A break that you took counts as done."},
    };
    for (const Case& c : cases) {
        StatsSummary summary;
        summary.tally = c.tally;
        summary.focusSeconds = c.focusSeconds;
        summary.finishedFocusBlocks = c.blocks;
        QStringList figures, notes;
        const auto tiles = StatsSentences::tiles(summary, {.current = 1, .best = 12});
        for (const auto& tile : tiles) {
            figures << tile.figure;
            notes << tile.note;
        }
        EXPECT_EQ(figures.join(" | ").toStdString(), c.figures);
        EXPECT_EQ(notes.join(" | ").toStdString(), c.notes);
        EXPECT_EQ(tiles[0].sentence.toStdString(), c.spoken);
        EXPECT_EQ(
            tiles[1].sentence.toStdString(),
            "Streak: 1 good day in a row, best 12. At least 60% done. Good days in a row make "
            "your streak.");
    }
}

TEST(StatsSentences, TellsEachSlotAsASentence) {
    const StatsTally some{.done = 5, .missed = 2, .snoozed = 1};
    struct Case {
        const char* start;
        const char* end;
        StatsRange range;
        StatsTally tally;
        std::int64_t focusSeconds;
        const char* sentence;
    };
    const Case cases[] = {
        {"2026-11-16T23:00:00Z", "2026-11-17T23:00:00Z", StatsRange::week, some, 3000,
         "Tuesday, 17 November: 5 done, 2 missed, 1 snoozed, 50 minutes of focus"},
        {"2026-11-16T23:00:00Z",
         "2026-11-17T23:00:00Z",
         StatsRange::month,
         {},
         0,
         "Tuesday, 17 November: nothing counted"},
        {"2026-11-17T13:00:00Z",
         "2026-11-17T14:00:00Z",
         StatsRange::today,
         {},
         3661,
         "14:00–15:00: 1 hour 1 minute of focus"},
        // The hour that the clock shows twice, and the one before the hour that it skips.
        {"2026-10-25T00:00:00Z",
         "2026-10-25T01:00:00Z",
         StatsRange::today,
         {.done = 1},
         0,
         "02:00–02:00: 1 done"},
        {"2026-10-25T01:00:00Z",
         "2026-10-25T02:00:00Z",
         StatsRange::today,
         {.done = 1},
         0,
         "02:00–03:00: 1 done"},
        {"2026-03-29T00:00:00Z",
         "2026-03-29T01:00:00Z",
         StatsRange::today,
         {.done = 1},
         0,
         "01:00–03:00: 1 done"},
    };
    const Calendar calendar("Europe/Berlin", "en_GB");
    for (const Case& c : cases) {
        const StatsBucket bucket{{at(c.start), at(c.end)}, c.tally, c.focusSeconds};
        EXPECT_EQ(StatsSentences::slotSentence(bucket, c.range, calendar).toStdString(),
                  c.sentence);
    }
}

TEST(StatsSentences, TellsHabitsAndWhatWasImported) {
    const Calendar american("America/New_York", "en_US");
    StatsHabit habit{.id = ReminderId{1},
                     .title = "Stretch",
                     .tally = {.done = 3, .missed = 4, .snoozed = 0},
                     .mostlyMissedHour = 23};
    const QString line = StatsSentences::habitLine(habit, american).replace(QChar(0x202f), u' ');
    EXPECT_EQ(line.toStdString(), "3 done · 4 missed · mostly missed 11:00 PM–1:00 AM");
    habit.id = StatsHabit::Deleted{"Stretch", ReminderKind::work};
    habit.mostlyMissedHour.reset();
    EXPECT_EQ(StatsSentences::habitSentence(habit, american).toStdString(),
              "Stretch, deleted: 43% done, 3 done, 4 missed");
    habit.tally = {.done = 0, .missed = 0, .snoozed = 1};
    EXPECT_EQ(StatsSentences::habitSentence(habit, american).toStdString(),
              "Stretch, deleted: 1 snoozed");

    EXPECT_EQ(StatsSentences::imported({}, "a.csv").toStdString(),
              "Nothing new in “a.csv”. It's all here already.");
    EXPECT_EQ(StatsSentences::imported({.reminders = 1, .events = 7, .focusBlocks = 2}, "a.csv")
                  .toStdString(),
              "Added 1 reminder, 7 answered or missed alerts and 2 focus blocks from “a.csv”.");
}

TEST(ChartScale, HasRoundSteps) {
    struct Case {
        std::int64_t most;
        int mostLines;
        ChartScale counts;
        ChartScale seconds;
    };
    const Case cases[] = {{0, 4, {1, 1}, {300, 1}},
                          {4, 4, {1, 4}, {300, 1}},
                          {5, 4, {2, 3}, {300, 1}},
                          {28, 4, {10, 3}, {300, 1}},
                          {1000, 4, {500, 2}, {300, 4}},
                          {1201, 4, {500, 3}, {600, 3}},
                          {5400, 2, {5000, 2}, {3600, 2}},
                          {16 * 3600, 4, {20000, 3}, {4 * 3600, 4}},
                          {300'000, 4, {100'000, 3}, {50 * 3600, 2}}};
    for (const Case& c : cases) {
        EXPECT_EQ(ChartScale::ofCounts(c.most, c.mostLines), c.counts) << c.most;
        EXPECT_EQ(ChartScale::ofSeconds(c.most, c.mostLines), c.seconds) << c.most;
    }
    constexpr int strides[] = {1, 2, 5};
    EXPECT_EQ(labelStride(strides, 28, 40), 1);
    EXPECT_EQ(labelStride(strides, 29, 40), 2);
    EXPECT_EQ(labelStride(strides, 500, 40), 5);
}

}  // namespace
}  // namespace tendel

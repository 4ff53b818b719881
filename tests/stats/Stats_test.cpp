#include "stats/Stats.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/Iso8601.h"

namespace tendel {
namespace {

using std::chrono::hours;

Instant at(const std::string& iso) {
    return parseIso8601(iso).value();
}

const Calendar berlin("Europe/Berlin", "en_GB");
const Instant midnight = at("2026-03-05T23:00:00Z");  // of Friday, 6 March, in Berlin
const Instant now = midnight + hours(12);

// Done, a break taken, Snoozed, sKipped, eXpired, and a private one done.
StatsRecord record(char answer, Instant due, std::optional<ReminderId> id = {},
                   const char* title = "Rest") {
    const Outcome outcome = answer == 'b'   ? Outcome::breakTaken
                            : answer == 's' ? Outcome::snoozed
                            : answer == 'k' ? Outcome::skipped
                            : answer == 'x' ? Outcome::expired
                                            : Outcome::done;
    return StatsRecord(id, title, answer == 'p' ? ReminderKind::private_ : ReminderKind::work, due,
                       outcome);
}

// "done/missed/snoozed"
std::string text(const StatsTally& tally) {
    return std::to_string(tally.done) + "/" + std::to_string(tally.missed) + "/" +
           std::to_string(tally.snoozed);
}

TEST(Buckets, AreTheHoursOfADayAndTheDaysThatExist) {
    // The start, and how many hours each of the slots that follow one another has.
    const auto found = [](const char* zone, const char* time, StatsRange range) {
        const auto slots = buckets(range, at(time), Calendar(zone, "en"));
        std::ostringstream words;
        words << formatIso8601(slots.front().start);
        for (std::size_t i = 0, run = 1; i < slots.size(); ++i, ++run) {
            const Duration length = slots[i].end - slots[i].start;
            if (i + 1 < slots.size() && slots[i].end != slots[i + 1].start) words << " gap";
            if (i + 1 < slots.size() && slots[i + 1].end - slots[i + 1].start == length) continue;
            words << " " << run << "x" << toSeconds(length) / 3600;
            run = 0;
        }
        return words.str();
    };
    constexpr auto today = StatsRange::today, week = StatsRange::week, month = StatsRange::month;
    for (const auto& [zone, time, range, expected] : {
             std::tuple{"Europe/Berlin", "2026-03-05T23:00:00Z", today,
                        "2026-03-05T23:00:00Z 24x1"},
             {"Europe/Berlin", "2026-03-05T22:59:59Z", today, "2026-03-04T23:00:00Z 24x1"},
             {"Europe/Berlin", "2021-03-28T20:00:00Z", today, "2021-03-27T23:00:00Z 23x1"},
             {"Europe/Berlin", "2021-10-31T20:00:00Z", today, "2021-10-30T22:00:00Z 25x1"},
             // Begins at one o'clock.
             {"America/Sao_Paulo", "2017-10-15T15:00:00Z", today, "2017-10-15T03:00:00Z 23x1"},
             {"Australia/Lord_Howe", "2022-10-02T03:00:00Z", today,
              "2022-10-01T13:30:00Z 23x1 1x0.5"},
             {"Australia/Lord_Howe", "2022-04-03T03:00:00Z", today,
              "2022-04-02T13:00:00Z 24x1 1x0.5"},
             {"Europe/Berlin", "2021-03-30T20:00:00Z", week, "2021-03-23T23:00:00Z 4x24 1x23 2x24"},
             {"Europe/Berlin", "2021-03-30T20:00:00Z", month,
              "2021-02-28T23:00:00Z 27x24 1x23 2x24"},
             // Without 30 December.
             {"Pacific/Apia", "2012-01-01T20:00:00Z", week, "2011-12-27T10:00:00Z 6x24"},
         })
        EXPECT_EQ(found(zone, time, range), expected) << zone;
}

TEST(Summary, CountsEachOutcomeWhereItWasDueAndNothingOutside) {
    const Instant end = midnight + hours(24), atOne = midnight + hours(1);
    constexpr Duration tick(1);
    std::vector<StatsRecord> records;
    for (const char answer : {'d', 'b', 'b', 's', 'k', 'x', 'x', 'x'})
        records.push_back(record(answer, atOne));
    for (const Instant due : {midnight - tick, midnight, atOne - tick, end - tick, end})
        records.push_back(record('d', due, ReminderId{1}));
    std::vector<FocusRecord> focus(4);
    for (std::size_t i = 0; i < focus.size(); ++i) {
        focus[i].start = std::array{midnight - tick, atOne, end - tick, end}[i];
        focus[i].focusedSeconds = 600;
        focus[i].finished = i % 2 == 0;
    }
    for (const auto& [range, filter, expected] :
         {std::tuple{StatsRange::today, StatsFilter::all,
                     "6/4/1 2/0/0 3/4/1 1/0/0 1200 1 3/0/0 3/4/1"},
          {StatsRange::today, StatsFilter::private_, "0/0/0 0/0/0 0/0/0 0/0/0 1200 1"},
          {StatsRange::week, StatsFilter::all, "7/4/1 0/0/0 0/0/0 6/4/1 1800 2 4/0/0 3/4/1"}}) {
        const auto found = Stats::summary(records, focus, range, filter, now, berlin);
        std::string words = text(found.tally) + " " + text(found.buckets[0].tally) + " " +
                            text(found.buckets[1].tally) + " " + text(found.buckets.back().tally) +
                            " " + std::to_string(found.focusSeconds) + " " +
                            std::to_string(found.finishedFocusBlocks);
        for (const StatsHabit& habit : found.habits)
            words += " " + text(habit.tally);
        EXPECT_EQ(words, expected);
    }
}

TEST(Summary, KeepsAHabitByItsReminderOrElseByTitleAndKindAndOrdersThem) {
    const ReminderId water{7}, eyes{8}, rest{9}, five{5};
    const std::string again = "Stretch";
    const std::vector<StatsRecord> records{
        record('p', now, {}, "Stretch"),
        record('x', now, {}, "Stretch"),
        record('x', now, {}, again.c_str()),
        record('x', now, {}, "Task 10"),
        record('x', now, {}, "task 9"),
        record('d', now - hours(48), water, "Water"),  // not of today
        record('p', now, water, "Drink water"),
        record('x', now, water, "Tea"),
        record('d', now, eyes, "Eyes"),
        record('x', now, rest, "eyes"),
        record('d', now, five, "Eyes"),
    };
    const auto words = [&](StatsFilter filter) {
        std::string all;
        for (const StatsHabit& habit :
             Stats::summary(records, {}, StatsRange::today, filter, now, berlin).habits) {
            const auto* id = std::get_if<ReminderId>(&habit.id);
            all += (id ? std::to_string(id->value) : "-") + " " + habit.title + " " +
                   std::string(rawValue(habit.kind)) + " " + text(habit.tally) + ", ";
        }
        return all;
    };
    EXPECT_EQ(words(StatsFilter::all),
              "7 Drink water private 1/1/0, 9 eyes work 0/1/0, 8 Eyes work 1/0/0, "
              "5 Eyes work 1/0/0, - Stretch work 0/2/0, - task 9 work 0/1/0, "
              "- Task 10 work 0/1/0, - Stretch private 1/0/0, ");
    EXPECT_EQ(words(StatsFilter::private_),
              "7 Drink water private 1/0/0, - Stretch private 1/0/0, ");
}

TEST(Summary, NamesTheHourThatBeginsTheTwoInWhichMostWereMissed) {
    using Case = std::tuple<std::string, std::vector<const char*>, std::optional<int>>;
    const std::string usual = "2026-03-05", springForward = "2026-03-29", fallBack = "2025-10-26";
    for (const auto& [day, missedInUtc, hourInBerlin] : {
             Case{usual, {"08:10", "08:40", "09:05"}, 9},
             {usual, {"22:30", "22:50", "23:10"}, 23},
             {usual, {"07:00", "11:00", "15:00", "19:00"}, {}},
             {usual, {"08:10", "08:40"}, {}},
             {usual, {"08:10", "08:40", "15:00", "19:00"}, {}},    // half of them
             {usual, {"08:10", "09:40", "10:05"}, 9},              // the earliest
             {usual, {"08:10", "09:40", "09:50", "10:05"}, 10},    // the fuller hour
             {springForward, {"00:30", "01:30", "01:40"}, 3},      // there is no 2 o'clock
             {fallBack, {"00:30", "01:30", "05:00", "02:10"}, 2},  // there are two
         }) {
        std::vector<StatsRecord> records;
        for (const char* time : missedInUtc)
            records.push_back(record(records.empty() ? 'k' : 'x', at(day + "T" + time + ":00Z")));
        records.push_back(record('d', records[0].dueAt));
        const auto week = Stats::summary(records, {}, StatsRange::week, StatsFilter::all,
                                         at(day + "T12:00:00Z") + hours(24), berlin);
        EXPECT_EQ(week.habits.at(0).mostlyMissedHour, hourInBerlin) << day << missedInUtc[0];
    }
}

TEST(Streak, CountsGoodDaysAndNotTodayUntilItIsGood) {
    using Case = std::pair<std::vector<const char*>, const char*>;
    for (const auto& [daysUpToToday, currentAndBest] : {
             Case{{""}, "0/0"},
             {{"d", "d", "", "d", "dk"}, "3/3"},
             {{"d", "d", "", "d", "dddkx"}, "4/4"},
             {{"d", "dddkx", "ddkk", "d"}, "1/2"},
             {{"d", "sssss", "d", "k", ""}, "0/2"},
             {{"d", "k", "d", "dp"}, "2/2"},
             {{"p", "p", "p"}, "0/0"},
         }) {
        std::vector<StatsRecord> records;
        for (Instant day = midnight - hours(24) * int(daysUpToToday.size() - 1);
             const char* answers : daysUpToToday) {
            for (const char answer : std::string_view(answers))
                records.push_back(record(answer, day));
            day += hours(24);
        }
        records.push_back(record('d', midnight + hours(24)));
        std::reverse(records.begin(), records.end());
        const auto streak = Stats::streak(records, StatsFilter::work, now, berlin);
        EXPECT_EQ(std::to_string(streak.current) + "/" + std::to_string(streak.best),
                  currentAndBest)
            << daysUpToToday[0] << daysUpToToday.size();
    }
}

TEST(Streak, TakesDatesThatAHandWrote) {
    std::vector<StatsRecord> records;
    for (const Instant due : {Instant::max(), Instant::min(), at("0001-01-01T00:00:00Z"),
                              at("9999-12-31T00:00:00Z"), now - hours(24)})
        records.push_back(record('d', due));
    EXPECT_EQ(Stats::streak(records, StatsFilter::all, now, berlin), (StatsStreak{3, 3}));
    EXPECT_EQ(
        text(Stats::summary(records, {}, StatsRange::month, StatsFilter::all, now, berlin).tally),
        "1/0/0");
}

TEST(Tally, IsPutInWordsAndNeverWrapsRound) {
    EXPECT_EQ((StatsTally{3, 1, 2}.countsText()), "3 done · 1 missed · 2 snoozed");
    EXPECT_EQ((StatsTally{0, 4, 0}.countsText()), "4 missed");
    EXPECT_EQ(StatsTally{}.countsText(), "");
    EXPECT_EQ((StatsTally{0, 0, 9}.doneRate()), std::nullopt);
    StatsTally full{.missed = std::numeric_limits<std::int64_t>::max()};
    EXPECT_DEATH(full.count(Outcome::expired), "beyond 64 bits");
}

}  // namespace
}  // namespace tendel

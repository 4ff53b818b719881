#include "stats/StreakSearch.h"

#include <gtest/gtest.h>

#include <random>

#include "../window/WindowFixture.h"
#include "stats/Stats.h"

namespace tendel {
namespace {

TEST(StreakSearch, FindsWhatTheWholeHistorySays) {
    std::mt19937 random(5);
    const auto any = [&](int from, int to) {
        return std::uniform_int_distribution(from, to)(random);
    };
    struct Past {
        int days;
        int badOneIn;    // days
        int emptyOneIn;  // days
        int absence;     // days without anything before the last ten
    };
    const Past pasts[] = {{0, 2, 2, 0},       {1, 2, 1000, 0},   {6, 3, 1000, 0},
                          {30, 20, 4, 0},     {90, 1000, 3, 60}, {400, 1000, 9, 0},
                          {900, 300, 2, 500}, {15, 2, 2, 3000}};
    for (const Past& past : pasts)
        for (int round = 0; round < 4; ++round) {
            SCOPED_TRACE(std::to_string(past.days) + " days, round " + std::to_string(round));
            test::Desk desk;
            const DayInterval today = desk.calendar.day(desk.loop.now());
            std::vector<ReminderEvent> events;
            for (int back = 0; back < past.days; ++back) {
                if (any(1, past.emptyOneIn) == 1) continue;
                const bool isBad = any(1, past.badOneIn) == 1;
                const int gone = back < 10 ? back : back + past.absence;
                const DayInterval day = desk.calendar.adding(-gone, today);
                for (int i = any(1, 5); i > 0; --i)
                    // Also what is due later today, after the clock was set back.
                    events.emplace_back(Reminder(),
                                        day.start + (day.end - day.start) * any(0, 9) / 10,
                                        isBad ? Outcome::expired : Outcome::done, day.end);
            }
            ASSERT_TRUE(desk.store.record(events));
            std::vector<StatsRecord> records;
            for (const ReminderEvent& event : events)
                records.emplace_back(event);

            std::int64_t found = -1;
            StreakSearch search(desk.store, desk.loop, desk.calendar);
            search.start([&](std::int64_t) { found = -2; });
            search.start([&](std::int64_t days) { found = days; });
            EXPECT_EQ(found, -1);
            desk.loop.advance(std::chrono::seconds(1));
            EXPECT_EQ(
                found,
                Stats::streak(records, StatsFilter::all, desk.loop.now(), desk.calendar).current);
        }
}

}  // namespace
}  // namespace tendel

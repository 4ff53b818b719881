#include <gtest/gtest.h>
#include <unicode/basictz.h>
#include <unicode/strenum.h>
#include <unicode/tztrans.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "base/Calendar.h"

// Every clock change of every zone, held against the definitions of a day and of a time on it. All
// that is asked of ICU here is the offset at a moment; between two changes the local clock only
// goes forward, so that "the first moment" is proven by looking at the ends of the stretches.

namespace tendel {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::milliseconds;

constexpr Instant from{days(0)};          // 1970
constexpr Instant until{days(68 * 365)};  // 2037

class Zone {
public:
    explicit Zone(const icu::UnicodeString& name)
        : zone_(dynamic_cast<icu::BasicTimeZone*>(icu::TimeZone::createTimeZone(name))) {
        icu::TimeZoneTransition change;
        UDate after = double(std::chrono::floor<milliseconds>(from).time_since_epoch().count());
        while (zone_->getNextTransition(after, false, change)) {
            after = change.getTime();
            const Instant t{milliseconds(static_cast<std::int64_t>(after))};
            if (t >= until) break;
            if (offset(t) != offset(t - milliseconds(1))) changes.push_back(t);
        }
    }

    Duration offset(Instant t) const {
        int standard = 0, saving = 0;
        UErrorCode status = U_ZERO_ERROR;
        const auto ms = std::chrono::floor<milliseconds>(t.time_since_epoch()).count();
        zone_->getOffset(static_cast<UDate>(ms), false, standard, saving, status);
        return milliseconds(standard + saving);
    }
    Duration local(Instant t) const { return t.time_since_epoch() + offset(t); }

    // Whether the local clock shows `wanted` or later at `t`, and did not yet from `begin` on.
    bool isFirst(Instant t, Duration wanted, Instant begin) const {
        if (local(t) < wanted) return false;
        const auto wasReachedBy = [&](Instant end) {
            return end > begin && local(end - milliseconds(1)) >= wanted;
        };
        const auto first = std::ranges::upper_bound(changes, begin);
        const auto last = std::ranges::upper_bound(changes, t);
        return !wasReachedBy(t) && std::none_of(first, last, wasReachedBy);
    }

    std::vector<Instant> changes;

private:
    std::unique_ptr<icu::BasicTimeZone> zone_;
};

TEST(CalendarSweepTest, EveryDayAroundEveryClockChangeOfEveryZoneIsAsDefined) {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::StringEnumeration> names(icu::TimeZone::createTimeZoneIDEnumeration(
        UCAL_ZONE_TYPE_CANONICAL, nullptr, nullptr, status));
    ASSERT_TRUE(U_SUCCESS(status));
    int daysSeen = 0;
    while (const icu::UnicodeString* name = names->snext(status)) {
        std::string zoneName;
        name->toUTF8String(zoneName);
        const Zone zone(*name);
        const Calendar calendar(zoneName, "en");
        // One that has not seen a day by its date, and one that sees it by nothing else.
        const Calendar asked(zoneName, "en"), dated(zoneName, "en");
        for (const Instant change : zone.changes) {
            const auto told = [&] { return zoneName + " " + formatIso8601(change); };
            DayInterval day = calendar.day(change - days(2));
            for (int i = 0; i < 4; ++i, ++daysSeen) {
                const Duration midnight = days(int(day.day));
                ASSERT_LT(day.start, day.end) << told();
                // The next existing day follows at once.
                ASSERT_TRUE(zone.isFirst(day.end, midnight + days(1), day.start)) << told();
                for (const Instant t : {change, day.start, day.end - Duration(1)}) {
                    if (!day.contains(t)) continue;
                    ASSERT_EQ(asked.day(t).day, day.day) << told();
                }
                // A date that was skipped stands for the next one.
                ASSERT_EQ(dated.day(CivilDay{int(day.day) + 1}).start, day.end) << told();
                const int weekday = ((int(day.day) + 4) % 7 + 7) % 7 + 1;
                ASSERT_EQ(day.weekday, weekday) << told();

                const auto beforeChange = zone.local(change - milliseconds(1)) % days(1);
                const int hourOfChange = static_cast<int>((beforeChange / hours(1) + 24) % 24);
                for (const int hour : {0, hourOfChange, (hourOfChange + 1) % 24, 23})
                    for (const int minute : {0, 20, 59}) {
                        const Duration wanted =
                            midnight + hours(hour) + std::chrono::minutes(minute);
                        ASSERT_TRUE(
                            zone.isFirst(calendar.time(day, hour, minute), wanted, day.start))
                            << told() << " at " << hour << ":" << minute;
                    }

                const DayInterval next = calendar.dayAfter(day);
                ASSERT_EQ(next.start, day.end) << told();
                day = next;
            }
        }
    }
    EXPECT_GT(daysSeen, 50'000);
}

}  // namespace
}  // namespace tendel

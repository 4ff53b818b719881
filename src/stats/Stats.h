#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <variant>
#include <vector>

#include "base/Calendar.h"
#include "model/StatsFilter.h"
#include "model/StatsRange.h"
#include "stats/StatsRecord.h"

namespace tendel {

// A stretch of time, start inclusive, end exclusive.
struct DateInterval {
    Instant start;
    Instant end;

    bool contains(Instant t) const { return start <= t && t < end; }
    friend bool operator==(const DateInterval&, const DateInterval&) = default;
};

// The slots of a range's chart, oldest first: the hours of the day that contains `now`, or the last
// 7 or 30 days up to it. The slots follow one another without a gap. A day on which the clock
// changes has 23 or 25 hours, a date that the zone skipped is left out.
std::vector<DateInterval> buckets(StatsRange range, Instant now, const Calendar& calendar);

// One slot of a chart.
struct StatsBucket {
    DateInterval interval;
    StatsTally tally;
    std::int64_t focusSeconds = 0;  // of the focus that started in the slot

    friend bool operator==(const StatsBucket&, const StatsBucket&) = default;
};

// One reminder's record over the period.
struct StatsHabit {
    // What a habit is kept by. Deleted reminders of one title and kind are one habit.
    struct Deleted {
        std::string title;
        ReminderKind kind = ReminderKind::work;
        friend bool operator==(const Deleted&, const Deleted&) = default;
    };
    using Key = std::variant<ReminderId, Deleted>;

    Key id;
    std::string title;
    ReminderKind kind = ReminderKind::work;
    StatsTally tally;
    // The hour (0–23) that begins the two hours in which more than half of the missed ones were
    // due; absent when there are none or fewer than three were missed.
    std::optional<int> mostlyMissedHour;

    bool isDeleted() const { return std::holds_alternative<Deleted>(id); }
    friend bool operator==(const StatsHabit&, const StatsHabit&) = default;
};

// The numbers of one range.
struct StatsSummary {
    StatsTally tally;
    std::vector<StatsBucket> buckets;  // in time order
    std::int64_t focusSeconds = 0;
    std::int64_t finishedFocusBlocks = 0;
    // Existing reminders first; in each group by what was missed most, then by title.
    std::vector<StatsHabit> habits;

    friend bool operator==(const StatsSummary&, const StatsSummary&) = default;
};

// Good days in a row: days of which at least 60% of what was answered or missed was done. Days
// without any are passed over, and today counts once it is good.
struct StatsStreak {
    std::int64_t current = 0;
    std::int64_t best = 0;

    friend bool operator==(const StatsStreak&, const StatsStreak&) = default;
};

// The statistics of a history: pure functions over records in any order.
struct Stats {
    // What lies outside the range counts nowhere. Focus is not filtered.
    static StatsSummary summary(std::span<const StatsRecord> records,
                                std::span<const FocusRecord> focus, StatsRange range,
                                StatsFilter filter, Instant now, const Calendar& calendar);
    // Of the whole history, whatever range is shown.
    static StatsStreak streak(std::span<const StatsRecord> records, StatsFilter filter, Instant now,
                              const Calendar& calendar);
};

}  // namespace tendel

template <>
struct std::hash<tendel::StatsHabit::Deleted> {
    std::size_t operator()(const tendel::StatsHabit::Deleted& key) const noexcept;
};

#include "stats/Stats.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <string_view>
#include <unordered_map>

#include "stats/Checked.h"

namespace tendel {

namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;

constexpr std::size_t outcomeCount = 5;
constexpr std::size_t dayHours = 24;

bool isMissed(Outcome outcome) {
    return outcome == Outcome::skipped || outcome == Outcome::expired;
}

// How often each outcome came up. Counted up by one for each record in memory, of which there are
// far fewer than 64 bits hold.
class Counts {
public:
    void count(Outcome outcome) { ++counts_[static_cast<std::size_t>(outcome)]; }
    StatsTally tally() const {
        StatsTally tally;
        for (std::size_t i = 0; i < outcomeCount; ++i)
            tally.count(static_cast<Outcome>(i), counts_[i]);
        return tally;
    }

private:
    std::array<std::int64_t, outcomeCount> counts_{};
};

// Which kinds a filter lets pass.
class Passes {
public:
    explicit Passes(StatsFilter filter)
        : kinds_{filter != StatsFilter::private_, filter != StatsFilter::work} {}
    bool operator()(const StatsRecord& record) const {
        return kinds_[static_cast<std::size_t>(record.kind)];
    }

private:
    std::array<bool, 2> kinds_;
};

// A stretch of time and, where it is the same in all of it, local minus UTC.
struct Slot {
    DateInterval interval;
    std::optional<Duration> offset;
};

// The slots of a range, made once and then searched for each record.
class Slots {
public:
    Slots(StatsRange range, Instant now, const Calendar& calendar) : calendar_(calendar) {
        if (range == StatsRange::today)
            cutIntoHours(calendar.day(now));
        else
            addDays(range == StatsRange::week ? 7 : 30, calendar.day(now));
    }

    const std::vector<Slot>& all() const { return slots_; }

    // The number of the slot that contains `t`.
    std::optional<std::size_t> find(Instant t) const {
        if (slots_.empty() || t < start() || end() <= t) return std::nullopt;
        // All but a few are equally long: what is in a shorter or longer one is a few slots away.
        auto i = std::min(static_cast<std::size_t>((t - start()) / length_), slots_.size() - 1);
        while (t < slots_[i].interval.start)
            --i;
        while (slots_[i].interval.end <= t)
            ++i;
        return i;
    }

    // The hour that a clock shows at `t`, which is in slot `i`.
    std::size_t hourOf(std::size_t i, Instant t) const {
        const auto& offset = slots_[i].offset;
        if (!offset) return static_cast<std::size_t>(calendar_.localTime(t).hour);
        const Duration local = t.time_since_epoch() + *offset;
        return static_cast<std::size_t>(floor<hours>(local - floor<days>(local)).count());
    }

private:
    Instant start() const { return slots_.front().interval.start; }
    Instant end() const { return slots_.back().interval.end; }

    void cutIntoHours(const DayInterval& day) {
        length_ = hours(1);
        for (Instant from = day.start; from < day.end; from += length_)
            slots_.push_back({{from, std::min(from + length_, day.end)}, day.uniformOffset});
    }

    void addDays(int count, const DayInterval& last) {
        length_ = days(1);
        for (int offset = 1 - count; offset <= 0; ++offset) {
            const DayInterval day = calendar_.adding(offset, last);
            const bool isSkippedDate = int(day.day) != int(last.day) + offset;
            if (!isSkippedDate) slots_.push_back({{day.start, day.end}, day.uniformOffset});
        }
    }

    const Calendar& calendar_;
    std::vector<Slot> slots_;  // without a gap
    Duration length_{};        // of most of them
};

// What is gathered about one habit.
struct HabitCounts {
    const StatsRecord* first = nullptr;
    Counts outcomes;
    std::array<std::int64_t, dayHours> missedHours{};
};

// Begins the two hours with the most of `missed`, when those are more than half of all three or
// more.
std::optional<int> mostlyMissedHour(const std::array<std::int64_t, dayHours>& missed) {
    std::int64_t all = 0;
    for (const std::int64_t count : missed)
        all = checkedSum(all, count);
    if (all < 3) return std::nullopt;

    const auto inTwoHours = [&](std::size_t hour) {
        return checkedSum(missed[hour], missed[(hour + 1) % dayHours]);
    };
    std::size_t best = 0;
    for (std::size_t hour = 1; hour < dayHours; ++hour) {
        const auto sum = inTwoHours(hour), largest = inTwoHours(best);
        if (sum > largest || (sum == largest && missed[hour] > missed[best])) best = hour;
    }
    if (checkedProduct(2, inTwoHours(best)) <= all) return std::nullopt;
    return static_cast<int>(best);
}

// The habits, in the order in which their first records come.
class Habits {
public:
    HabitCounts& of(const StatsRecord& record) {
        // There are few habits, and the records of one mostly share their title in memory: what was
        // last met in a place is tried before the hash tables are.
        std::size_t& guess = recent_[place(record)];
        if (guess >= habits_.size() || !isSameInMemory(*habits_[guess].first, record))
            guess = find(record);
        return habits_[guess];
    }

    std::vector<StatsHabit> sorted(const Calendar& calendar) const {
        std::vector<StatsHabit> all;
        all.reserve(habits_.size());
        for (const HabitCounts& habit : habits_)
            all.push_back(made(habit));
        std::stable_sort(all.begin(), all.end(), [&](const StatsHabit& a, const StatsHabit& b) {
            if (a.isDeleted() != b.isDeleted()) return b.isDeleted();
            if (a.tally.missed != b.tally.missed) return a.tally.missed > b.tally.missed;
            return calendar.compare(a.title, b.title) < 0;
        });
        return all;
    }

private:
    static constexpr int placeBits = 8;

    static std::size_t place(const StatsRecord& record) {
        const auto number = record.hasReminder()
                                ? static_cast<std::uint64_t>(record.reminderID()->value)
                                : reinterpret_cast<std::uintptr_t>(record.title().data());
        // Multiplicative hashing by the golden ratio (Knuth, volume 3, 6.4).
        return (number * 0x9E37'79B9'7F4A'7C15u) >> (64 - placeBits);
    }
    static bool isSameInMemory(const StatsRecord& a, const StatsRecord& b) {
        if (a.hasReminder() != b.hasReminder()) return false;
        if (a.hasReminder()) return a.reminderID()->value == b.reminderID()->value;
        return a.kind == b.kind && a.title().data() == b.title().data() &&
               a.title().size() == b.title().size();
    }

    std::size_t find(const StatsRecord& record) {
        const auto next = habits_.size();
        const auto id = record.reminderID();
        const auto number = id ? ofReminders_.try_emplace(*id, next).first->second
                               : ofDeleted_[static_cast<std::size_t>(record.kind)]
                                     .try_emplace(record.title(), next)
                                     .first->second;
        if (number == next) habits_.emplace_back().first = &record;
        return number;
    }

    static StatsHabit made(const HabitCounts& counts) {
        const StatsRecord& first = *counts.first;
        StatsHabit habit;
        habit.title = first.title();
        habit.kind = first.kind;
        if (const auto id = first.reminderID())
            habit.id = *id;
        else
            habit.id = StatsHabit::Deleted{habit.title, habit.kind};
        habit.tally = counts.outcomes.tally();
        habit.mostlyMissedHour = mostlyMissedHour(counts.missedHours);
        return habit;
    }

    std::vector<HabitCounts> habits_;
    std::array<std::size_t, 1u << placeBits> recent_{};
    std::unordered_map<ReminderId, std::size_t> ofReminders_;
    std::array<std::unordered_map<std::string_view, std::size_t>, 2> ofDeleted_;  // by kind
};

// What is beyond these is only there by mistake; sums with them stay in the range of an Instant.
constexpr Instant earliest = Instant::min() + days(3), latest = Instant::max() - days(3);

// The days of a history with what came of each; a day is asked of the calendar once.
class Days {
public:
    explicit Days(const Calendar& calendar) : calendar_(calendar) {}

    struct Day {
        DayInterval interval;
        Counts outcomes;
    };

    Day& of(Instant t) {
        if (last_ && last_->interval.contains(t)) return *last_;
        // As far from UTC as the last one was; by a clock change it may be the date beside.
        const auto guess =
            floor<days>(std::clamp(t, earliest, latest) + lastOffset_).time_since_epoch();
        for (const int beside : {0, -1, 1}) {
            const auto known = days_.find(CivilDay{int((guess + days(beside)).count())});
            if (known == days_.end() || !known->second.interval.contains(t)) continue;
            return remember(known->second);
        }
        const DayInterval day = calendar_.day(t);
        return remember(days_.try_emplace(day.day, Day{day, {}}).first->second);
    }

    std::vector<const Day*> sorted() const {
        std::vector<const Day*> all;
        all.reserve(days_.size());
        for (const auto& [date, day] : days_)
            all.push_back(&day);
        std::ranges::sort(all, {}, [](const Day* day) { return day->interval.start; });
        return all;
    }

private:
    Day& remember(Day& day) {
        last_ = &day;
        if (day.interval.uniformOffset) lastOffset_ = *day.interval.uniformOffset;
        return day;
    }

    const Calendar& calendar_;
    std::unordered_map<CivilDay, Day> days_;
    Day* last_ = nullptr;
    Duration lastOffset_{};
};

// At least 60% of what was answered or missed was done.
bool isGood(const StatsTally& tally) {
    return checkedProduct(tally.done, 100) >=
           checkedProduct(checkedSum(tally.done, tally.missed), 60);
}

}  // namespace

std::vector<DateInterval> buckets(StatsRange range, Instant now, const Calendar& calendar) {
    const Slots slots(range, now, calendar);
    std::vector<DateInterval> intervals;
    for (const Slot& slot : slots.all())
        intervals.push_back(slot.interval);
    return intervals;
}

StatsSummary Stats::summary(std::span<const StatsRecord> records,
                            std::span<const FocusRecord> focus, StatsRange range,
                            StatsFilter filter, Instant now, const Calendar& calendar) {
    const Slots slots(range, now, calendar);
    const Passes passes(filter);
    std::vector<Counts> slotCounts(slots.all().size());
    Habits habits;
    for (const StatsRecord& record : records) {
        if (!passes(record)) continue;
        const auto slot = slots.find(record.dueAt);
        if (!slot) continue;
        slotCounts[*slot].count(record.outcome);
        HabitCounts& habit = habits.of(record);
        habit.outcomes.count(record.outcome);
        if (isMissed(record.outcome)) ++habit.missedHours[slots.hourOf(*slot, record.dueAt)];
    }

    StatsSummary summary;
    for (std::size_t i = 0; i < slotCounts.size(); ++i) {
        const StatsTally tally = slotCounts[i].tally();
        summary.buckets.push_back({.interval = slots.all()[i].interval, .tally = tally});
        summary.tally += tally;
    }
    for (const FocusRecord& block : focus) {
        const auto slot = slots.find(block.start);
        if (!slot) continue;
        auto& inSlot = summary.buckets[*slot].focusSeconds;
        inSlot = checkedSum(inSlot, block.focusedSeconds);
        summary.focusSeconds = checkedSum(summary.focusSeconds, block.focusedSeconds);
        if (block.finished) ++summary.finishedFocusBlocks;
    }
    summary.habits = habits.sorted(calendar);
    return summary;
}

StatsStreak Stats::streak(std::span<const StatsRecord> records, StatsFilter filter, Instant now,
                          const Calendar& calendar) {
    const Passes passes(filter);
    Days history(calendar);
    for (const StatsRecord& record : records)
        if (passes(record)) history.of(record.dueAt).outcomes.count(record.outcome);

    const Instant today = calendar.startOfDay(now);
    StatsStreak streak;
    for (const Days::Day* day : history.sorted()) {
        const StatsTally tally = day->outcomes.tally();
        if (tally.done == 0 && tally.missed == 0) continue;
        // Today breaks nothing while it is still running.
        const Instant start = day->interval.start;
        if (start > today || (start == today && !isGood(tally))) continue;
        streak.current = isGood(tally) ? checkedSum(streak.current, 1) : 0;
        streak.best = std::max(streak.best, streak.current);
    }
    return streak;
}

}  // namespace tendel

std::size_t std::hash<tendel::StatsHabit::Deleted>::operator()(
    const tendel::StatsHabit::Deleted& key) const noexcept {
    const std::hash<std::string_view> ofText;
    return ofText(key.title) * 31 + ofText(rawValue(key.kind));
}

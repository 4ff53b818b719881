#include "stats/StreakSearch.h"

#include <algorithm>
#include <utility>

#include "stats/Stats.h"

namespace tendel {

namespace {

constexpr int week = 7;
constexpr int longest = 52 * week;
constexpr Duration oldest = std::chrono::days(200 * 365);

}  // namespace

StreakSearch::StreakSearch(const Store& store, EventLoop& loop, const Calendar& calendar)
    : store_(store), loop_(loop), calendar_(calendar) {}

void StreakSearch::start(std::function<void(std::int64_t)> onFound) {
    onFound_ = std::move(onFound);
    days_ = 0;
    now_ = loop_.now();
    end_ = calendar_.day(now_).end;
    length_ = week;
    horizon_ = now_ - oldest;
    next_.start(Duration::zero(), [this] { step(); });
}

void StreakSearch::step() {
    const DayInterval last = calendar_.day(end_ - Duration(1));
    const Instant from = calendar_.adding(1 - length_, last).start;
    std::vector<StatsRecord> records;
    for (const ReminderEvent& event : store_.eventsDue(from, end_))
        records.emplace_back(event.reminder, std::string_view(), event.kind(), event.fireDate,
                             event.outcome());
    // Only today may still become good; the end of an earlier stretch is a day like the others.
    const Instant asked = std::min(now_, end_);
    const auto run = [&] {
        return Stats::streak(records, StatsFilter::all, asked, calendar_).current;
    };
    // Days without reminders are passed over: growing steps do not linger on a long absence.
    length_ = records.empty() ? std::min(2 * length_, longest) : week;
    const std::int64_t good = run();
    // A good day before all of them belongs to the run exactly when nothing here has broken it.
    records.emplace_back(std::nullopt, std::string_view(), ReminderKind::work, from - Duration(1),
                         Outcome::done);
    const bool goesFurther = run() > good;
    days_ += good;
    end_ = from;
    if (goesFurther && end_ > horizon_)
        next_.start(Duration::zero(), [this] { step(); });
    else
        onFound_(days_);
}

}  // namespace tendel

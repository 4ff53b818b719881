#include <deque>
#include <iostream>
#include <nlohmann/json.hpp>
#include <set>
#include <string>

#include "stats/Stats.h"

// Reads a history from each line and writes its statistics for every range and filter as a line.

namespace tendel {
namespace {

using Json = nlohmann::json;

Instant instant(const Json& microseconds) {
    return Instant(Duration(microseconds.get<std::int64_t>()));
}
std::int64_t microseconds(Instant t) {
    return t.time_since_epoch().count();
}

Json words(const StatsTally& tally) {
    return {tally.done, tally.missed, tally.snoozed};
}

Json words(const StatsSummary& summary) {
    Json buckets = Json::array(), habits = Json::array();
    for (const StatsBucket& bucket : summary.buckets)
        buckets.push_back({microseconds(bucket.interval.start), microseconds(bucket.interval.end),
                           words(bucket.tally), bucket.focusSeconds});
    for (const StatsHabit& habit : summary.habits) {
        const auto* id = std::get_if<ReminderId>(&habit.id);
        const auto* deleted = std::get_if<StatsHabit::Deleted>(&habit.id);
        const auto& hour = habit.mostlyMissedHour;
        habits.push_back({id ? Json(id->value) : Json{deleted->title, rawValue(deleted->kind)},
                          habit.title, rawValue(habit.kind), words(habit.tally),
                          hour ? Json(*hour) : Json()});
    }
    return {words(summary.tally), buckets, summary.focusSeconds, summary.finishedFocusBlocks,
            habits};
}

Json statistics(const Json& history) {
    const Calendar calendar(history["zone"].get<std::string>(), "en_US");
    const Instant now = instant(history["now"]);
    std::deque<ReminderEvent> events;
    std::set<std::string> titles;
    std::vector<StatsRecord> records;
    for (const Json& given : history["records"]) {
        ReminderEvent& event = events.emplace_back();
        if (!given[0].is_null()) event.reminder = ReminderId{given[0].get<std::int64_t>()};
        event.reminderTitle = given[1];
        event.kindRaw = given[2];
        event.fireDate = instant(given[3]);
        event.outcomeRaw = given[4];
        // Where titles lie must make no difference.
        if (history["sharesTitles"].get<bool>())
            records.emplace_back(event.reminder, *titles.insert(event.reminderTitle).first,
                                 event.kind(), event.fireDate, event.outcome());
        else
            records.emplace_back(event);
    }
    std::vector<FocusRecord> focus;
    for (const Json& given : history["focus"]) {
        FocusBlock block;
        block.start = instant(given[0]);
        block.focusedSeconds = given[1];
        block.finished = given[2];
        focus.emplace_back(block);
    }

    Json all;
    for (const auto filterName : statsFilterNames) {
        const StatsFilter filter = *statsFilter(filterName);
        const StatsStreak streak = Stats::streak(records, filter, now, calendar);
        Json& filtered = all[std::string(filterName)];
        filtered["streak"] = {streak.current, streak.best};
        for (const auto range : statsRangeNames)
            filtered[std::string(range)] =
                words(Stats::summary(records, focus, *statsRange(range), filter, now, calendar));
    }
    return all;
}

}  // namespace
}  // namespace tendel

int main() {
    for (std::string line; std::getline(std::cin, line);)
        std::cout << tendel::statistics(nlohmann::json::parse(line)) << "\n";
}

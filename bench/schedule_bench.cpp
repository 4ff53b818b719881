#include <benchmark/benchmark.h>
#include <unicode/calendar.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

#include "reminders/ReminderSchedule.h"

// What a look of the scheduler over many reminders costs, also as a ratio to a thousand times of a
// day set and read on an ICU calendar in the same run ("of_icu").

namespace tendel {
namespace {

constexpr int count = 1000;

// Seconds that ICU takes, the best of some runs.
double icuSeconds() {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(icu::Calendar::createInstance(
        icu::TimeZone::createTimeZone("Europe/Berlin"), icu::Locale("en_GB"), status));
    double best = 1e9;
    for (int run = 0; run < 50; ++run) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < count; ++i) {
            calendar->set(UCAL_HOUR_OF_DAY, i % 24);
            calendar->set(UCAL_MINUTE, i % 60);
            benchmark::DoNotOptimize(calendar->getTime(status));
            benchmark::DoNotOptimize(calendar->get(UCAL_HOUR_OF_DAY, status));
            benchmark::DoNotOptimize(calendar->get(UCAL_MINUTE, status));
        }
        const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
        best = std::min(best, taken.count());
    }
    return best;
}

std::vector<Reminder> reminders() {
    std::vector<Reminder> made(count);
    for (int i = 0; i < count; ++i) {
        Reminder& reminder = made[static_cast<std::size_t>(i)];
        reminder.setKind(i % 2 == 0 ? ReminderKind::work : ReminderKind::private_);
        const int start = i * 7 % (24 * 60);  // all different; the late ones among work never fire
        reminder.setStart({start / 60, start % 60});
        reminder.intervalMinutes = 20 + i % 100;
    }
    return made;
}

void lookOverAll(benchmark::State& state, const char* moment) {
    const Calendar calendar("Europe/Berlin", "en_GB");
    const auto all = reminders();
    const Instant now = parseIso8601(moment).value();
    const double baseline = icuSeconds();
    const auto start = std::chrono::steady_clock::now();
    for (auto _ : state) {
        ScheduleSearch search(calendar, WorkingHours::standard());
        for (const Reminder& reminder : all)
            benchmark::DoNotOptimize(search.nextFireDate(reminder, now));
    }
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - start;
    state.counters["of_icu"] = taken.count() / static_cast<double>(state.iterations()) / baseline;
}
BENCHMARK_CAPTURE(lookOverAll, atWork, "2026-03-02T09:15:30Z")->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lookOverAll, beforeAWeekend, "2026-03-06T20:15:30Z")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(lookOverAll, onTheDayOfAClockChange, "2026-03-28T23:30:00Z")
    ->Unit(benchmark::kMicrosecond);

}  // namespace
}  // namespace tendel

BENCHMARK_MAIN();

#include <benchmark/benchmark.h>
#include <malloc.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include "stats/Stats.h"
#include "stats/StatsHistory.h"

// What the statistics of a history cost, beside a single pass that only adds up the same records
// ("pass", and "ratio" to it), and what it costs to read one and to hold it, beside all that the
// store would hand out. Times are medians in milliseconds, memory is in megabytes of 10^6 bytes.

namespace tendel {
namespace {

namespace fs = std::filesystem;

using std::chrono::days;

constexpr int reminderCount = 20;
constexpr Instant now{std::chrono::seconds(1'750'000'000)};

template <class Work>
double millisecondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

double median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Takes turns, so that both meet the same disturbances.
template <class Ours, class Other>
void compare(benchmark::State& state, const char* otherName, const Ours& ours, const Other& other) {
    std::vector<double> our, their;
    for (auto _ : state) {
        our.push_back(millisecondsOf(ours));
        their.push_back(millisecondsOf(other));
        state.SetIterationTime(our.back() / 1e3);
    }
    state.counters["median"] = median(our);
    state.counters[otherName] = median(their);
    state.counters["ratio"] = median(our) / median(their);
}

enum class Order { inTime, shuffled };

// Alerts evenly spread over the time before `now`, one in ten of reminders that are gone.
std::vector<StatsRecord> records(int count, days spread, Order order) {
    static const auto titles = [] {
        std::vector<std::string> made;
        for (int i = 0; i < reminderCount; ++i)
            made.push_back("Rest your eyes " + std::to_string(i));
        return made;
    }();
    std::mt19937 source(7);
    std::vector<StatsRecord> made;
    for (int i = 0; i < count; ++i) {
        const auto which = static_cast<std::int64_t>(source() % reminderCount);
        const auto id = source() % 10 == 0 ? std::nullopt : std::optional(ReminderId{which + 1});
        made.emplace_back(
            id, titles[which], which % 2 == 0 ? ReminderKind::work : ReminderKind::private_,
            now - Duration(spread) / count * (count - i), static_cast<Outcome>(source() % 5));
    }
    if (order == Order::shuffled) std::shuffle(made.begin(), made.end(), source);
    return made;
}

void summaryAndStreak(benchmark::State& state, days spread, Order order) {
    const Calendar calendar("Europe/Berlin", "en_GB");
    const auto history = records(static_cast<int>(state.range(0)), spread, order);
    const auto statistics = [&] {
        benchmark::DoNotOptimize(
            Stats::summary(history, {}, StatsRange::month, StatsFilter::all, now, calendar));
        benchmark::DoNotOptimize(Stats::streak(history, StatsFilter::all, now, calendar));
    };
    const auto singlePass = [&] {
        std::int64_t sum = 0;
        for (const StatsRecord& record : history)
            sum += record.dueAt.time_since_epoch().count() + int(record.outcome);
        benchmark::DoNotOptimize(sum);
    };
    compare(state, "pass", statistics, singlePass);
}

// A store with that many events on disk.
class StoreOf {
public:
    explicit StoreOf(int count) {
        std::string name = fs::temp_directory_path() / "tendel-bench-XXXXXX";
        folder_ = ::mkdtemp(name.data());
        store = std::move(Store::open(folder_ / "Tendel.store").value());
        std::vector<Reminder> reminders(reminderCount);
        static_cast<void>(store->save([&](Store::Writer& writer) {
            for (int i = 0; i < reminderCount; ++i) {
                Reminder& reminder = reminders[static_cast<std::size_t>(i)];
                reminder.title = "Rest your eyes " + std::to_string(i);
                reminder.id = writer.insert(reminder);
            }
            for (int i = 0; i < count; ++i) {
                const Instant due = now - std::chrono::minutes(5) * (count - i);
                writer.insert(ReminderEvent(reminders[static_cast<std::size_t>(i % reminderCount)],
                                            due, static_cast<Outcome>(i % 5), due));
            }
        }));
    }
    StoreOf(const StoreOf&) = delete;
    StoreOf& operator=(const StoreOf&) = delete;
    ~StoreOf() {
        store.reset();
        fs::remove_all(folder_);
    }

    std::unique_ptr<Store> store;

private:
    fs::path folder_;
};

double megabytesAllocated() {
    const auto info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd) / 1e6;
}

double megabytesResident(const std::string& field) {
    std::ifstream status("/proc/self/status");
    std::string word;
    double kibibytes = 0;
    while (status >> word)
        if (word == field) status >> kibibytes;
    return kibibytes * 1024 / 1e6;
}

void readHistory(benchmark::State& state) {
    const StoreOf history(static_cast<int>(state.range(0)));
    compare(
        state, "events",
        [&] { benchmark::DoNotOptimize(StatsHistory(*history.store).records().data()); },
        [&] { benchmark::DoNotOptimize(history.store->events().data()); });
}

// One more answer, with a history that follows the store and with none.
void recordOneAnswer(benchmark::State& state) {
    const StoreOf followed(static_cast<int>(state.range(0))),
        alone(static_cast<int>(state.range(0)));
    StatsHistory stats(*followed.store);
    benchmark::DoNotOptimize(stats.records().data());
    const ReminderEvent answer(followed.store->reminders().front(), now, Outcome::done, now);
    compare(
        state, "alone",
        [&] {
            static_cast<void>(followed.store->record({&answer, 1}));
            benchmark::DoNotOptimize(stats.records().data());
        },
        [&] {
            static_cast<void>(alone.store->record({&answer, 1}));
        });
}

// The memory that stays, and that was in use at the peak of the reading.
template <class Read>
void hold(benchmark::State& state, const Read& read) {
    const StoreOf history(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        ::malloc_trim(0);
        std::ofstream("/proc/self/clear_refs") << "5";  // the peak counts from here
        const double before = megabytesAllocated(), resident = megabytesResident("VmRSS:");
        const auto held = read(*history.store);
        state.counters["held"] = megabytesAllocated() - before;
        state.counters["peak"] = megabytesResident("VmHWM:") - resident;
        benchmark::DoNotOptimize(&held);
    }
}

void holdHistory(benchmark::State& state) {
    hold(state, [](Store& store) {
        auto history = std::make_unique<StatsHistory>(store);
        benchmark::DoNotOptimize(history->records().data());
        return history;
    });
}

void holdEvents(benchmark::State& state) {
    hold(state, [](Store& store) { return store.events(); });
}

constexpr days tenYears(3652), month(29);

void sizes(benchmark::internal::Benchmark* each) {
    each->Arg(1'000)->Arg(100'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(summaryAndStreak, overTenYears, tenYears, Order::inTime)
    ->Apply(sizes)
    ->UseManualTime();
BENCHMARK_CAPTURE(summaryAndStreak, insideTheMonth, month, Order::inTime)
    ->Apply(sizes)
    ->UseManualTime();
BENCHMARK_CAPTURE(summaryAndStreak, insideTheMonthShuffled, month, Order::shuffled)
    ->Apply(sizes)
    ->UseManualTime();
BENCHMARK_CAPTURE(summaryAndStreak, overTenYearsShuffled, tenYears, Order::shuffled)
    ->Apply(sizes)
    ->UseManualTime();
BENCHMARK(readHistory)->Apply(sizes)->UseManualTime()->Iterations(5);
BENCHMARK(recordOneAnswer)->Apply(sizes)->UseManualTime()->Iterations(300);
BENCHMARK(holdHistory)->Apply(sizes)->Iterations(1);
BENCHMARK(holdEvents)->Apply(sizes)->Iterations(1);

}  // namespace
}  // namespace tendel

BENCHMARK_MAIN();

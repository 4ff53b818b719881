#include <benchmark/benchmark.h>
#include <sqlite3.h>
#include <stdlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "storage/Archive.h"
#include "storage/Store.h"

// What the store costs, each beside the same work done with bare SQLite in the same run: "bare" is
// the median time of that in milliseconds, "ratio" ours to it.

namespace tendel {
namespace {

namespace fs = std::filesystem;

constexpr int eventCount = 250'000;  // ten years

// A store with ten years of history, and copies of it.
class History {
public:
    History() {
        std::string name = fs::temp_directory_path() / "tendel-bench-XXXXXX";
        folder_ = ::mkdtemp(name.data());
        const auto store = std::move(Store::open(file()).value());
        std::vector<Reminder> reminders;
        static_cast<void>(store->save([&](Store::Writer& writer) {
            for (int i = 0; i < 20; ++i) {
                Reminder& reminder = reminders.emplace_back();
                reminder.title = "Rest your eyes " + std::to_string(i);
                reminder.id = writer.insert(reminder);
            }
            for (int i = 0; i < eventCount; ++i)
                writer.insert(event(reminders[static_cast<std::size_t>(i) % 20], i));
        }));
    }
    ~History() { fs::remove_all(folder_); }

    fs::path file() const { return folder_ / "Tendel.store"; }
    static ReminderEvent event(const Reminder& reminder, int number) {
        const Instant due{std::chrono::seconds(1'400'000'000 + 1260 * number)};
        return ReminderEvent(reminder, due, Outcome::done, due + std::chrono::seconds(8));
    }

private:
    fs::path folder_;
};

const History& history() {
    static const History made;
    return made;
}

// A bare connection with the same journal and the same sync.
class Bare {
public:
    explicit Bare(const fs::path& file) {
        sqlite3_open(file.c_str(), &database_);
        run("PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
    }
    Bare(const Bare&) = delete;
    Bare& operator=(const Bare&) = delete;
    ~Bare() {
        sqlite3_finalize(statement_);
        sqlite3_close(database_);
    }

    void run(const char* text) { sqlite3_exec(database_, text, nullptr, nullptr, nullptr); }
    sqlite3_stmt* prepare(const char* text) {
        sqlite3_prepare_v2(database_, text, -1, &statement_, nullptr);
        return statement_;
    }

private:
    sqlite3* database_ = nullptr;
    sqlite3_stmt* statement_ = nullptr;
};

template <class Work>
double secondsOf(const Work& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double median(std::vector<double>& values) {
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// Takes turns, so that both meet the same disturbances.
template <class Ours, class Theirs>
void compare(benchmark::State& state, const Ours& ours, const Theirs& bare) {
    std::vector<double> our, their;
    for (auto _ : state) {
        our.push_back(ours());
        their.push_back(bare());
        state.SetIterationTime(our.back());
    }
    state.counters["median"] = median(our) * 1e3;
    state.counters["bare"] = median(their) * 1e3;
    state.counters["ratio"] = median(our) / median(their);
}

double openBareAndCount() {
    return secondsOf([] {
        Bare bare(history().file());
        sqlite3_step(bare.prepare("SELECT count(*) FROM events"));
    });
}

double openStore() {
    std::unique_ptr<Store> store;
    return secondsOf([&] { store = std::move(Store::open(history().file()).value()); });
}

void openClosedInOrder(benchmark::State& state) {
    openStore();
    compare(state, openStore, openBareAndCount);
}

void openAfterACrash(benchmark::State& state) {
    const auto openTouched = [] {
        fs::last_write_time(history().file(), fs::file_time_type::clock::now());
        return openStore();
    };
    compare(state, openTouched, openBareAndCount);
}

void readAllEvents(benchmark::State& state) {
    const auto store = std::move(Store::open(history().file()).value());
    Bare bare(history().file());
    sqlite3_stmt* const rows = bare.prepare(
        "SELECT id, reminder, fireDate, respondedAt, outcomeRaw, reminderTitle, kindRaw"
        " FROM events ORDER BY id");
    const auto readBare = [&] {
        sqlite3_reset(rows);
        std::vector<ReminderEvent> events;
        const auto text = [&](int column) {
            return std::string(static_cast<const char*>(sqlite3_column_blob(rows, column)),
                               static_cast<std::size_t>(sqlite3_column_bytes(rows, column)));
        };
        while (sqlite3_step(rows) == SQLITE_ROW) {
            ReminderEvent& event = events.emplace_back();
            event.id = sqlite3_column_int64(rows, 0);
            event.reminder = ReminderId{sqlite3_column_int64(rows, 1)};
            event.fireDate = Instant{Duration{sqlite3_column_int64(rows, 2)}};
            event.respondedAt = Instant{Duration{sqlite3_column_int64(rows, 3)}};
            event.outcomeRaw = text(4);
            event.reminderTitle = text(5);
            event.kindRaw = text(6);
        }
        benchmark::DoNotOptimize(events.data());
    };
    compare(
        state, [&] { return secondsOf([&] { benchmark::DoNotOptimize(store->events().data()); }); },
        [&] { return secondsOf(readBare); });
}

// One answer on disk: with its two indices, against an insert into a bare table.
void recordOneAnswer(benchmark::State& state) {
    const auto store = std::move(Store::open(history().file()).value());
    const Reminder reminder = store->reminders().front();
    const fs::path other = history().file().parent_path() / "bare.db";
    Bare bare(other);
    bare.run(
        "CREATE TABLE IF NOT EXISTS events (id INTEGER PRIMARY KEY, reminder INTEGER,"
        " fireDate INTEGER, respondedAt INTEGER, outcomeRaw TEXT, reminderTitle TEXT,"
        " kindRaw TEXT)");
    sqlite3_stmt* const insert = bare.prepare(
        "INSERT INTO events (reminder, fireDate, respondedAt, outcomeRaw, reminderTitle, kindRaw)"
        " VALUES (1, ?, 0, 'done', 'Rest your eyes 0', 'work')");
    int number = eventCount;
    compare(
        state,
        [&] {
            const ReminderEvent answer = History::event(reminder, ++number);
            return secondsOf([&] { static_cast<void>(store->record({&answer, 1})); });
        },
        [&] {
            return secondsOf([&] {
                sqlite3_bind_int64(insert, 1, number);
                sqlite3_step(insert);
                sqlite3_reset(insert);
            });
        });
}

// Both beside reading the same events from the store and nothing more.
double readEventsOf(const Store& store) {
    return secondsOf([&] { benchmark::DoNotOptimize(store.events().data()); });
}

void exportHistory(benchmark::State& state, ArchiveFormat format) {
    const auto store = std::move(Store::open(history().file()).value());
    const fs::path file = history().file().parent_path() / "history";
    compare(
        state,
        [&] { return secondsOf([&] { static_cast<void>(exportArchive(*store, file, format)); }); },
        [&] { return readEventsOf(*store); });
}

void importHistory(benchmark::State& state, ArchiveFormat format) {
    const auto store = std::move(Store::open(history().file()).value());
    const fs::path folder = history().file().parent_path() / "fresh";
    const fs::path file = history().file().parent_path() / "history";
    static_cast<void>(exportArchive(*store, file, format));
    compare(
        state,
        [&] {
            fs::remove_all(folder);
            const auto fresh = std::move(Store::open(folder / "Tendel.store").value());
            return secondsOf([&] { static_cast<void>(importArchive(*fresh, file)); });
        },
        [&] { return readEventsOf(*store); });
}

BENCHMARK(openClosedInOrder)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(50);
BENCHMARK(openAfterACrash)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(20);
BENCHMARK(readAllEvents)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(recordOneAnswer)->UseManualTime()->Unit(benchmark::kMillisecond)->Iterations(2000);
BENCHMARK_CAPTURE(exportHistory, csv, ArchiveFormat::csv)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);
BENCHMARK_CAPTURE(exportHistory, json, ArchiveFormat::json)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(10);
BENCHMARK_CAPTURE(importHistory, csv, ArchiveFormat::csv)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);
BENCHMARK_CAPTURE(importHistory, json, ArchiveFormat::json)
    ->UseManualTime()
    ->Unit(benchmark::kMillisecond)
    ->Iterations(5);

}  // namespace
}  // namespace tendel

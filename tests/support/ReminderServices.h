#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>

#include "TemporaryFolder.h"
#include "base/SimulatedEventLoop.h"
#include "reminders/ReminderScheduler.h"

namespace tendel::test {

// When a reminder fires; by default far from the times of most tests.
struct Timing {
    TimeOfDay start{16, 0};
    int intervalMinutes = 1440;
    std::optional<int> durationSeconds{};
};

// What reminders live on: a store in a folder of its own, fresh settings, a scheduler that is not
// started yet, and in Berlin a clock that goes on when it is told to.
struct ReminderServices {
    explicit ReminderServices(std::string_view now) : loop(parseIso8601(now).value()) {}

    ReminderId insert(const Reminder& made) {
        ReminderId id;
        save([&](Store::Writer& writer) { id = writer.insert(made); });
        return id;
    }
    ReminderId add(std::string title, const Timing& timing = {}) {
        Reminder made;
        made.title = std::move(title);
        made.setStart(timing.start);
        made.intervalMinutes = timing.intervalMinutes;
        made.durationSeconds = timing.durationSeconds;
        return insert(made);
    }
    void edit(ReminderId id, const std::function<void(Reminder&)>& change) {
        Reminder changed = *store->find(id);
        change(changed);
        save([&](Store::Writer& writer) { writer.update(changed); });
    }
    void remove(ReminderId id) {
        save([&](Store::Writer& writer) { writer.remove(id); });
    }
    void save(const std::function<void(Store::Writer&)>& changes) {
        if (const auto saved = store->save(changes); !saved)
            throw std::runtime_error(saved.error());
    }

    std::string time(Instant t) const { return calendar.formatTime(t); }
    // "10:00 Stretch done, …" since the last call.
    std::string takeHistory() {
        std::string all;
        const auto events = store->events();
        for (auto i = std::exchange(eventsSeen, events.size()); i < events.size(); ++i)
            all += (all.empty() ? "" : ", ") + time(events[i].fireDate) + " " +
                   events[i].reminderTitle + " " + events[i].outcomeRaw;
        return all;
    }
    // "Stretch 10:00 3, …" with the number of the reason.
    std::string kept() const {
        std::string all;
        for (const Upcoming::Item& item : *scheduler.kept())
            all += (all.empty() ? "" : ", ") + item.title + " " + time(item.missedAt.value()) +
                   " " + std::to_string(int(item.keptReason.value()));
        return all;
    }

    // In memory where there is such a place, since every save is synced.
    TemporaryFolder folder{
        std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()};
    Calendar calendar{"Europe/Berlin", "en_GB"};
    SimulatedEventLoop loop;
    Defaults defaults;
    AppSettings settings{defaults};
    std::unique_ptr<Store> store = std::move(Store::open(folder.path / "Tendel.store").value());
    Presence presence = Presence::present;
    ReminderScheduler scheduler{
        settings, *store, loop, calendar, [this] { return presence; }, std::chrono::seconds(3)};
    std::size_t eventsSeen = 0;
};

}  // namespace tendel::test

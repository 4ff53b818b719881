#pragma once

#include <algorithm>
#include <functional>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "app/TendelApp.h"
#include "base/SimulatedEventLoop.h"
#include "platform/silent/SilentAudio.h"

namespace tendel::test {

// A store in memory that can be told to refuse.
class MemoryStore : public Store {
public:
    std::optional<std::string> refusal;

    Result<void> save(const std::function<void(Writer&)>& changes) override {
        if (refusal) return Error{*refusal};
        Changes writer(*this);
        changes(writer);
        saved.emit();
        return {};
    }
    Result<void> record(std::span<const ReminderEvent> events) override {
        events_.insert(events_.end(), events.begin(), events.end());
        return {};
    }
    Result<void> flush() override { return {}; }

    const std::vector<Reminder>& reminders() const override { return reminders_; }
    const Reminder* find(ReminderId id) const override {
        const auto found = std::ranges::find(reminders_, id, &Reminder::id);
        return found == reminders_.end() ? nullptr : &*found;
    }
    std::vector<ReminderEvent> events() const override { return events_; }
    std::vector<ReminderEvent> eventsDue(Instant from, Instant to) const override {
        std::vector<ReminderEvent> due;
        std::ranges::copy_if(events_, std::back_inserter(due), [&](const ReminderEvent& each) {
            return from <= each.fireDate && each.fireDate < to;
        });
        std::ranges::stable_sort(due, {}, &ReminderEvent::fireDate);
        return due;
    }
    std::vector<ReminderEvent> eventsWithoutTitle() const override { return {}; }
    std::vector<FocusBlock> focusBlocks() const override { return focusBlocks_; }
    std::vector<FocusBlock> focusBlocksWithoutEnd() const override { return {}; }

    ReminderId add(Reminder reminder) {
        ReminderId id;
        static_cast<void>(save([&](Writer& writer) { id = writer.insert(std::move(reminder)); }));
        return id;
    }

private:
    struct Changes final : Writer {
        explicit Changes(MemoryStore& of) : store(of) {}
        ReminderId insert(Reminder reminder) override {
            reminder.id = {++store.lastId_};
            store.reminders_.push_back(reminder);
            return reminder.id;
        }
        void update(const Reminder& reminder) override {
            for (Reminder& stored : store.reminders_)
                if (stored.id == reminder.id) stored = reminder;
        }
        void remove(ReminderId id) override {
            std::erase_if(store.reminders_, [id](const Reminder& each) { return each.id == id; });
            for (ReminderEvent& each : store.events_)
                if (each.reminder == id) each.reminder.reset();
        }
        void insert(const ReminderEvent& event) override {
            store.events_.push_back(event);
            store.events_.back().id = std::ssize(store.events_);
        }
        void update(const ReminderEvent&) override {}
        std::int64_t insert(const FocusBlock& block) override {
            store.focusBlocks_.push_back(block);
            return store.focusBlocks_.back().id = std::ssize(store.focusBlocks_);
        }
        void update(const FocusBlock&) override {}
        MemoryStore& store;
    };

    std::vector<Reminder> reminders_;
    std::vector<ReminderEvent> events_;
    std::vector<FocusBlock> focusBlocks_;
    std::int64_t lastId_ = 0;
};

struct NoScreens : Screens {
    std::vector<ScreenInfo> all() const override { return {}; }
    std::optional<std::pair<double, double>> pointer() const override { return std::nullopt; }
};

// The application without a desktop around it, on a Monday at 10:12 in Berlin.
struct Desk {
    explicit Desk(std::string_view locale = "en_US") : calendar("Europe/Berlin", locale) {
        app.start();
    }

    SimulatedEventLoop loop{*parseIso8601("2026-03-02T09:12:00Z")};
    Calendar calendar;
    NoScreens screens;
    SilentAudio audio;
    Defaults defaults;
    MemoryStore store;
    TendelApp app{
        {.loop = loop, .calendar = calendar, .screens = screens, .audio = audio}, defaults, store};
};

}  // namespace tendel::test

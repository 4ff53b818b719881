#include "stats/StatsHistory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <memory>
#include <random>
#include <vector>

#include "storage/Files.h"

namespace tendel {
namespace {

constexpr Instant t0{std::chrono::seconds(1'750'000'000)};

class StatsHistoryTest : public testing::Test {
protected:
    int below(std::size_t count) { return static_cast<int>(dice_() % count); }
    template <class List>
    auto oneOf(const List& list) {
        return list[static_cast<std::size_t>(below(list.size()))];
    }
    ReminderEvent anyEvent() {
        const Instant due = t0 + std::chrono::minutes(below(10'000));
        ReminderEvent event(Reminder(), due, static_cast<Outcome>(below(5)), t0);
        event.reminder = ReminderId{below(20)};  // which may not be there
        event.reminderTitle = "Task " + std::to_string(below(5));
        return event;
    }
    // As the store tells it when it is asked for everything.
    std::vector<StatsRecord> records() {
        events_.push_back(std::make_unique<std::vector<ReminderEvent>>(store_->events()));
        return {events_.back()->begin(), events_.back()->end()};
    }
    std::vector<FocusRecord> focus() const {
        const auto blocks = store_->focusBlocks();
        return {blocks.begin(), blocks.end()};
    }

    test::TemporaryFolder folder_{
        std::filesystem::exists("/dev/shm") ? "/dev/shm" : std::filesystem::temp_directory_path()};
    std::filesystem::path file_ = folder_.path / "Tendel.store";
    std::unique_ptr<Store> store_ = std::move(Store::open(file_).value());
    std::mt19937 dice_{20'261'121};
    std::vector<std::unique_ptr<std::vector<ReminderEvent>>> events_;
};

TEST_F(StatsHistoryTest, FollowsWhateverIsSavedAndTellsOfItOnce) {
    const auto insertReminder = [](Store::Writer& writer) { writer.insert(Reminder()); };
    const auto insertFocus = [](Store::Writer& writer) { writer.insert(FocusBlock()); };
    const auto import = [&](Store::Writer& writer) {
        for (int i = 0; i < 3; ++i)
            writer.insert(anyEvent());
    };
    const std::function<void(Store::Writer&)> changes[] = {
        insertReminder,
        insertFocus,
        import,
        [&](auto& writer) { writer.remove(oneOf(store_->reminders()).id); },
        [&](auto& writer) {
            Reminder renamed = oneOf(store_->reminders());
            renamed.title += "!";
            writer.update(renamed);
        },
        [&](auto& writer) {
            ReminderEvent changed = oneOf(store_->events());
            changed.fireDate += Duration(1);
            if (changed.id != 0) writer.update(changed);
        },
        [&](auto& writer) {
            FocusBlock changed = oneOf(store_->focusBlocks());
            ++(below(2) == 0 ? changed.focusedSeconds : changed.plannedMinutes);
            writer.update(changed);
        },
        [&](auto& writer) { writer.insert(anyEvent()); },
    };
    StatsHistory history(*store_);
    int told = 0, differed = 0;
    const Subscription listening = history.changed.connect([&] { ++told; });
    for (const auto& first : {changes[0], changes[0], changes[1], changes[2]})
        ASSERT_TRUE(store_->save(first));
    EXPECT_EQ(told, 0);  // nobody has asked yet

    for (int i = 0; i < 400; ++i) {
        const auto before = records();
        const auto focusBefore = focus();
        ASSERT_TRUE(std::ranges::equal(history.records(), before)) << i;
        ASSERT_TRUE(std::ranges::equal(history.focus(), focusBefore)) << i;
        if (below(10) == 0) {
            const FullDisk full(0);
            const ReminderEvent answer = anyEvent();
            EXPECT_FALSE(store_->record({&answer, 1}));  // it is part of the history all the same
            continue;
        }
        if (store_->reminders().empty()) static_cast<void>(store_->save(insertReminder));
        told = 0;
        ASSERT_TRUE(store_->save(oneOf(std::span(changes))));
        const bool isDifferent = records() != before || focus() != focusBefore;
        EXPECT_EQ(told, isDifferent ? 1 : 0) << i;
        differed += isDifferent;
    }
    EXPECT_GT(differed, 100);
    EXPECT_LT(differed, 350);
}

TEST_F(StatsHistoryTest, ReadsAroundDamage) {
    ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
        for (int i = 0; i < 20'000; ++i)
            writer.insert(anyEvent());
    }));
    store_.reset();
    store_ = std::move(Store::open(file_).value());
    // The kind of a page that holds events, in the middle of them.
    const std::string content = contentOf(file_);
    std::fstream(file_, std::ios::in | std::ios::out | std::ios::binary)
        .seekp(std::streamoff(content.find("Task", content.size() / 2) / 4096 * 4096))
        .put('x');
    StatsHistory history(*store_);
    EXPECT_LT(history.records().size(), 20'000u);
    const ReminderEvent answer = anyEvent();
    static_cast<void>(store_->record({&answer, 1}));
    EXPECT_GT(history.records().size(), 18'000u);
    EXPECT_TRUE(std::ranges::equal(history.records(), records()));
}

}  // namespace
}  // namespace tendel

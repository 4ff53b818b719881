#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <random>
#include <string>
#include <thread>

#include "Files.h"
#include "storage/Store.h"

namespace tendel {
namespace {

Instant secondOf(std::int64_t n) {
    return Instant{std::chrono::seconds(n)};
}

// Changes a store without end and tells of each change once its save has returned. Change n records
// the answer due at second n; besides, every third one gives a reminder the title n, and every
// other third one makes a reminder with that title and deletes the oldest.
[[noreturn]] void changeWithoutEnd(const std::filesystem::path& file, std::int64_t n, int told) {
    auto opened = Store::open(file);
    for (; opened; ++n) {
        Store& store = *opened.value();
        const auto reminders = store.reminders();
        Reminder reminder = reminders[static_cast<std::size_t>(n) % reminders.size()];
        const ReminderEvent answer(reminder, secondOf(n), Outcome::done, secondOf(n));
        reminder.title = std::to_string(n);
        const auto saved =
            n % 3 == 0 ? store.record({&answer, 1}) : store.save([&](Store::Writer& writer) {
                writer.insert(answer);
                if (n % 3 == 1) {
                    writer.update(reminder);
                } else {
                    writer.insert(reminder);
                    writer.remove(reminders.front().id);
                }
            });
        if (!saved || ::write(told, &n, sizeof n) != sizeof n) break;
    }
    ::_exit(1);
}

// Killed at 200 moments, while it starts and while it writes: whenever the store is opened again,
// it holds exactly the changes up to the last acknowledged one, or the one more that was being
// acknowledged; and of each either all or nothing.
TEST(CrashSafety, EveryAcknowledgedChangeSurvivesAKill) {
    const test::TemporaryFolder folder;
    const auto file = folder.path / "Tendel.store";
    std::mt19937 random(20'231'114);
    std::deque<std::string> titles(5, "first");
    ASSERT_TRUE(Store::open(file).value()->save([&](Store::Writer& writer) {
        Reminder reminder;
        reminder.title = "first";
        for (std::size_t i = 0; i < titles.size(); ++i)
            writer.insert(reminder);
    }));
    std::int64_t inStore = 0;
    int killedWhileWriting = 0;
    for (int kill = 0; kill < 200; ++kill) {
        SCOPED_TRACE(kill);
        int ends[2];
        ASSERT_EQ(::pipe(ends), 0);
        const pid_t writer = ::fork();
        if (writer == 0) changeWithoutEnd(file, inStore + 1, ends[1]);
        ::close(ends[1]);
        std::int64_t acknowledged = inStore;
        const auto next = [&] {
            return ::read(ends[0], &acknowledged, sizeof acknowledged) == sizeof acknowledged;
        };
        const auto wanted = inStore + static_cast<std::int64_t>(random() % 30);
        while (acknowledged < wanted && next()) {
        }
        // Without any change, somewhere in its start.
        const unsigned longest = wanted == inStore ? 12'000 : 600;
        std::this_thread::sleep_for(std::chrono::microseconds(random() % longest));
        ::kill(writer, SIGKILL);
        int status = 0;
        ::waitpid(writer, &status, 0);
        ASSERT_TRUE(WIFSIGNALED(status)) << "the writer ended by itself";
        while (next()) {
        }
        ::close(ends[0]);

        const auto opened = Store::open(file);
        ASSERT_TRUE(opened) << opened.error();
        const Store& store = *opened.value();
        const auto answers = store.eventsDue(secondOf(inStore + 1), secondOf(1'000'000));
        const auto written = inStore + static_cast<std::int64_t>(answers.size());
        ASSERT_GE(written, acknowledged);
        ASSERT_LE(written, acknowledged + 1);
        killedWhileWriting += written > inStore;
        for (const ReminderEvent& answer : answers) {
            const std::int64_t n = ++inStore;
            ASSERT_EQ(answer.fireDate, secondOf(n));
            if (n % 3 == 1) titles[static_cast<std::size_t>(n) % titles.size()] = std::to_string(n);
            if (n % 3 != 2) continue;
            titles.push_back(std::to_string(n));
            titles.pop_front();
        }
        std::deque<std::string> stored;
        for (const Reminder& reminder : store.reminders())
            stored.push_back(reminder.title);
        ASSERT_EQ(stored, titles);
    }
    EXPECT_GT(killedWhileWriting, 100);
    EXPECT_EQ(static_cast<std::int64_t>(Store::open(file).value()->events().size()), inStore);
}

}  // namespace
}  // namespace tendel

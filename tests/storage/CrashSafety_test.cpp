#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
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

constexpr std::int64_t reminderCount = 5;

Instant secondOf(std::int64_t n) {
    return Instant{std::chrono::seconds(n)};
}

// The program that writes, and the pipe on which it acknowledges.
class Writer {
public:
    Writer(const std::filesystem::path& store, std::int64_t first) {
        int ends[2];
        EXPECT_EQ(::pipe2(ends, O_CLOEXEC), 0);
        acknowledged_ = ends[0];
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_adddup2(&actions, ends[1], STDOUT_FILENO);
        std::string program = STORE_WRITER, file = store, number = std::to_string(first);
        char* const arguments[] = {program.data(), file.data(), number.data(), nullptr};
        EXPECT_EQ(::posix_spawn(&process_, STORE_WRITER, &actions, nullptr, arguments, environ), 0);
        ::posix_spawn_file_actions_destroy(&actions);
        ::close(ends[1]);
    }
    Writer(const Writer&) = delete;
    Writer& operator=(const Writer&) = delete;
    ~Writer() { ::close(acknowledged_); }

    // The next acknowledged change; 0 when there is none any more.
    std::int64_t next() const {
        std::int64_t n = 0;
        return ::read(acknowledged_, &n, sizeof n) == sizeof n ? n : 0;
    }

    // Ends it on the spot; answers whether it was alive until then.
    bool kill() const {
        ::kill(process_, SIGKILL);
        int status = 0;
        ::waitpid(process_, &status, 0);
        return WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    }

private:
    pid_t process_ = 0;
    int acknowledged_ = -1;
};

// Killed at 200 moments, while it starts and while it writes: whenever the store is opened again,
// it holds exactly the changes up to the last acknowledged one, or the one more that was being
// acknowledged; and of each either all or nothing.
TEST(CrashSafety, EveryAcknowledgedChangeSurvivesAKill) {
    const TemporaryFolder folder;
    const auto file = folder.path / "Tendel.store";
    std::mt19937 random(20'231'114);
    std::deque<std::string> titles;
    {
        auto store = std::move(Store::open(file).value());
        for (std::int64_t i = 0; i < reminderCount; ++i) {
            Reminder reminder;
            reminder.title = titles.emplace_back("first");
            ASSERT_TRUE(store->save([&](Store::Writer& writer) { writer.insert(reminder); }));
        }
    }
    std::int64_t inStore = 0;
    int killedWhileWriting = 0;
    for (int kill = 0; kill < 200; ++kill) {
        SCOPED_TRACE(kill);
        std::int64_t acknowledged = inStore;
        {
            const Writer writer(file, inStore + 1);
            const auto wanted = inStore + static_cast<std::int64_t>(random() % 30);
            while (acknowledged < wanted) {
                const auto next = writer.next();
                ASSERT_NE(next, 0) << "the writer ended by itself";
                acknowledged = next;
            }
            // Without any change, somewhere in its start.
            const unsigned longest = wanted == inStore ? 12'000 : 600;
            std::this_thread::sleep_for(std::chrono::microseconds(random() % longest));
            ASSERT_TRUE(writer.kill());
            while (const auto next = writer.next())
                acknowledged = next;
        }

        const auto opened = Store::open(file);
        ASSERT_TRUE(opened) << opened.error();
        const Store& store = *opened.value();
        const auto answers = store.eventsDue(secondOf(inStore + 1), secondOf(1'000'000));
        const auto written = inStore + static_cast<std::int64_t>(answers.size());
        ASSERT_GE(written, acknowledged);
        ASSERT_LE(written, acknowledged + 1);
        for (std::int64_t n = inStore + 1; n <= written; ++n) {
            ASSERT_EQ(answers[static_cast<std::size_t>(n - inStore - 1)].fireDate, secondOf(n));
            if (n % 3 == 1) titles[static_cast<std::size_t>(n % reminderCount)] = std::to_string(n);
            if (n % 3 == 2) {
                titles.push_back(std::to_string(n));
                titles.pop_front();
            }
        }
        std::deque<std::string> stored;
        for (const Reminder& reminder : store.reminders())
            stored.push_back(reminder.title);
        ASSERT_EQ(stored, titles);
        killedWhileWriting += written > inStore;
        inStore = written;
    }
    EXPECT_GT(killedWhileWriting, 100);

    const auto store = std::move(Store::open(file).value());
    const auto all = store->events();
    ASSERT_EQ(static_cast<std::int64_t>(all.size()), inStore);
    for (std::size_t i = 0; i < all.size(); ++i)
        ASSERT_EQ(all[i].fireDate, secondOf(static_cast<std::int64_t>(i) + 1));
}

}  // namespace
}  // namespace tendel

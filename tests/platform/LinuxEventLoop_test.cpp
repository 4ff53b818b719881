#include "platform/linux/LinuxEventLoop.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <filesystem>
#include <fstream>
#include <thread>

#include "base/Timer.h"
#include "support/RunningLoop.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using test::runUntil;

class LinuxEventLoopTest : public ::testing::Test {
protected:
    ~LinuxEventLoopTest() override { std::filesystem::remove_all(folder_); }

    test::Application application_;
    std::filesystem::path folder_ = [] {
        auto made =
            std::filesystem::temp_directory_path() / ("tendel-zone-" + std::to_string(::getpid()));
        std::filesystem::create_directories(made);
        return made;
    }();
    LinuxEventLoop loop_{folder_};
};

TEST_F(LinuxEventLoopTest, RunsTimersInOrderNeverEarlyAndSoon) {
    std::string order;
    Duration earliest = 1h, latest = -1h;
    const MonotonicInstant start = loop_.monotonicNow();
    const auto add = [&](Duration delay, char letter) {
        return loop_.schedule(start + delay, [&, delay, letter] {
            order += letter;
            const Duration late = loop_.monotonicNow() - (start + delay);
            earliest = std::min(earliest, late);
            latest = std::max(latest, late);
        });
    };
    add(90ms, 'd');
    add(30ms, 'b');
    const TimerId canceled = add(20ms, 'x');
    add(30ms, 'c');
    loop_.schedule(start - 1h, [&] { order += 'a'; });
    loop_.cancel(canceled);
    EXPECT_EQ(order, "") << "nothing runs inside schedule()";
    ASSERT_TRUE(runUntil([&] { return order.size() >= 4; })) << order;
    EXPECT_EQ(order, "abcd");
    EXPECT_GE(earliest, 0us);
    EXPECT_LT(latest, 2s);
}

TEST_F(LinuxEventLoopTest, TaskMayScheduleAndCancelOthersAndTheNextDeadlineHolds) {
    std::string order;
    Timer first(loop_), second(loop_), third(loop_);
    second.start(40ms, [&] { order += 'x'; });
    first.start(10ms, [&] {
        order += 'a';
        second.stop();
        third.start(20ms, [&] {
            order += 'c';
            third.start(0ms, [&] { order += 'd'; });
        });
        loop_.post([&] { order += 'b'; });
    });
    ASSERT_TRUE(runUntil([&] { return order.size() >= 4; })) << order;
    EXPECT_EQ(order, "abcd");
}

TEST_F(LinuxEventLoopTest, PostsFromAnyThreadInOrderToTheMainOne) {
    std::string order;
    bool isMainThread = true;
    const auto main = std::this_thread::get_id();
    std::thread other([&] {
        for (char c = 'a'; c <= 'e'; ++c)
            loop_.post([&, c] {
                order += c;
                isMainThread &= std::this_thread::get_id() == main;
            });
    });
    other.join();
    EXPECT_EQ(order, "") << "nothing runs inside post()";
    ASSERT_TRUE(runUntil([&] { return order.size() >= 5; })) << order;
    EXPECT_EQ(order, "abcde");
    EXPECT_TRUE(isMainThread);
}

TEST_F(LinuxEventLoopTest, TellsOfANewZoneHoweverTheFileIsReplacedAndOfNoOtherFile) {
    const auto link = folder_ / "localtime";
    struct Case {
        const char* what;
        std::function<void()> change;
        bool isTold;
    };
    const Case cases[] = {
        {"link made", [&] { create_symlink("/usr/share/zoneinfo/Europe/Berlin", link); }, true},
        {"link renamed over it",
         [&] {
             create_symlink("/usr/share/zoneinfo/Asia/Tokyo", folder_ / ".localtime.new");
             rename(folder_ / ".localtime.new", link);
         },
         true},
        {"name written", [&] { std::ofstream(folder_ / "timezone") << "Asia/Tokyo\n"; }, true},
        {"another file", [&] { std::ofstream(folder_ / "localtime.bak") << "\n"; }, false},
    };
    for (const Case& c : cases) {
        int told = 0;
        const auto keep = loop_.timeZoneChanged.connect([&] { ++told; });
        c.change();
        // A timer sorts after what the change already made readable.
        bool isOver = false;
        Timer wait(loop_);
        wait.start(50ms, [&] { isOver = true; });
        ASSERT_TRUE(runUntil([&] { return isOver; }));
        EXPECT_EQ(told > 0, c.isTold) << c.what;
    }
}

TEST_F(LinuxEventLoopTest, RunsTimersWhereTheZoneCannotBeWatched) {
    LinuxEventLoop loop(folder_ / "missing");
    bool isRun = false;
    Timer timer(loop);
    timer.start(5ms, [&] { isRun = true; });
    EXPECT_TRUE(runUntil([&] { return isRun; }));
}

TEST_F(LinuxEventLoopTest, SleepsWhileNothingIsDue) {
    Timer later(loop_), earlier(loop_);
    later.start(1h, [] {});
    earlier.start(30min, [] {});
    earlier.stop();
    QCoreApplication::processEvents();
    // An event loop that found something to do would come back at once.
    QElapsedTimer waited;
    waited.start();
    bool isWoken = false;
    std::thread alarm([&] {
        std::this_thread::sleep_for(150ms);
        loop_.post([&] { isWoken = true; });
    });
    int rounds = 0;
    while (!isWoken) {
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        ++rounds;
    }
    alarm.join();
    EXPECT_GE(waited.elapsed(), 140);
    EXPECT_LE(rounds, 3);
}

}  // namespace
}  // namespace tendel

#include "platform/linux/LinuxEventLoop.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

#include <fstream>
#include <thread>

#include "base/Timer.h"
#include "support/RunningLoop.h"
#include "support/TemporaryFolder.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

class LinuxEventLoopTest : public ::testing::Test {
protected:
    test::Application application_;
    test::TemporaryFolder folder_;
    LinuxEventLoop loop_{folder_.path};
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
    Timer chain(loop_);  // of which each task begins the next
    chain.start(95ms, [&] { chain.start(5ms, [&] { chain.start(0ms, [&] { order += 'e'; }); }); });
    loop_.schedule(start - 1h, [&] { order += 'a'; });
    loop_.cancel(canceled);
    EXPECT_EQ(order, "") << "nothing runs inside schedule()";
    ASSERT_SOON(order.size() >= 5) << order;
    EXPECT_EQ(order, "abcde");
    EXPECT_GE(earliest, 0us);
    EXPECT_LT(latest, 2s);
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
    ASSERT_SOON(order.size() >= 5) << order;
    EXPECT_EQ(order, "abcde");
    EXPECT_TRUE(isMainThread);
}

TEST_F(LinuxEventLoopTest, TellsOfANewZoneHoweverTheFileIsReplacedAndOfNoOtherFile) {
    const auto& folder = folder_.path;
    const auto link = folder / "localtime";
    struct Case {
        const char* what;
        std::function<void()> change;
        bool isTold;
    };
    const Case cases[] = {
        {"link made", [&] { create_symlink("/usr/share/zoneinfo/Europe/Berlin", link); }, true},
        {"link renamed over it",
         [&] {
             create_symlink("/usr/share/zoneinfo/Asia/Tokyo", folder / ".localtime.new");
             rename(folder / ".localtime.new", link);
         },
         true},
        {"name written", [&] { std::ofstream(folder / "timezone") << "Asia/Tokyo\n"; }, true},
        {"another file", [&] { std::ofstream(folder / "localtime.bak") << "\n"; }, false},
    };
    for (const Case& c : cases) {
        int told = 0;
        const auto keep = loop_.timeZoneChanged.connect([&] { ++told; });
        c.change();
        test::runFor(50);
        EXPECT_EQ(told > 0, c.isTold) << c.what;
    }
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

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "base/Backoff.h"
#include "base/SimulatedEventLoop.h"
#include "base/Timer.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

class EventLoopTest : public ::testing::Test {
protected:
    // A task that writes one character.
    std::function<void()> write(char c) {
        return [this, c] { log_ += c; };
    }

    SimulatedEventLoop loop_{Instant(1'000'000'000s)};
    std::string log_;
};

TEST_F(EventLoopTest, RunsTasksByDueTimeThenByOrderAndWhatTheyPostAfterThem) {
    const MonotonicInstant start = loop_.monotonicNow();
    loop_.schedule(start + 2s, write('d'));
    loop_.schedule(start + 1s, [&] {
        loop_.post(write('c'));
        log_ += 'a';
    });
    loop_.schedule(start + 2s, write('e'));
    loop_.schedule(start + 1s, write('b'));
    loop_.advance(1s);
    EXPECT_EQ(log_, "abc");
    loop_.advance(10s);
    EXPECT_EQ(log_, "abcde");
}

TEST_F(EventLoopTest, TaskMayCancelOthersOfItsOwnTimeAndItself) {
    Timer first(loop_), second(loop_), third(loop_);
    first.start(1s, [&] {
        log_ += 'a';
        first.stop();
        second.stop();
    });
    second.start(1s, write('x'));
    third.start(1s, write('b'));
    loop_.advance(5s);
    EXPECT_EQ(log_, "ab");
    EXPECT_FALSE(first.isRunning() || second.isRunning() || third.isRunning());
}

TEST_F(EventLoopTest, TaskMayRestartOrDestroyItsTimerWithAllThatItCaptured) {
    auto timer = std::make_unique<Timer>(loop_);
    std::function<void()> again = [&, text = std::string("too long to be stored in place")] {
        log_ += 't';
        if (log_ == "ttt") {
            timer.reset();
            log_ += text;
        } else {
            timer->start(1s, again);
        }
    };
    timer->start(5s, write('x'));
    timer->start(1s, again);  // replaces what was pending
    std::make_unique<Timer>(loop_)->start(1s, write('x'));
    loop_.advance(10s);
    EXPECT_EQ(log_, "ttttoo long to be stored in place");
}

TEST_F(EventLoopTest, QueueRunsNoTaskThatWasAddedMeanwhile) {
    TimerQueue queue;
    const MonotonicInstant now(5s);
    std::function<void()> again = [&] {
        log_ += 'a';
        queue.add(now - 1s, again);
    };
    queue.add(now, again);
    queue.runDue(now);
    EXPECT_EQ(log_, "a");
    queue.runDue(now);
    EXPECT_EQ(log_, "aa");
}

TEST_F(EventLoopTest, TasksSeeTheirOwnTimeAndAfterSleepTheLateOne) {
    const Instant start = loop_.now();
    const auto tell = [&] { log_ += std::to_string((loop_.now() - start) / 1s) + " "; };
    for (const auto delay : {10s, 20s, 30s})
        loop_.schedule(loop_.monotonicNow() + delay, tell);
    loop_.advance(15s);
    loop_.sleep(1h);
    EXPECT_EQ(log_, "10 3615 3615 ");
}

TEST_F(EventLoopTest, WallClockJumpsAloneAndTimersKeepTheirTime) {
    const auto keep = loop_.wallClockChanged.connect(write('w'));
    loop_.schedule(loop_.monotonicNow() + 10s, write('t'));
    loop_.setWallClock(loop_.now() - 3h);
    loop_.advance(9s);
    EXPECT_EQ(log_, "w");
    loop_.advance(1s);
    EXPECT_EQ(log_, "wt");
}

TEST(BackoffTest, WaitsTwiceAsLongEachTimeUpToFiveMinutes) {
    Backoff backoff;
    std::string waits;
    for (int i = 0; i < 12; ++i)
        waits += std::to_string(backoff.next() / 500ms) + " ";
    EXPECT_EQ(waits, "1 2 4 8 16 32 64 128 256 512 600 600 ");
    backoff.reset();
    EXPECT_EQ(backoff.next(), 500ms);
}

}  // namespace
}  // namespace tendel

#include <gtest/gtest.h>

#include <memory>
#include <string>

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

TEST_F(EventLoopTest, RunsTasksByDueTimeAndThenByOrder) {
    const MonotonicInstant start = loop_.monotonicNow();
    loop_.schedule(start + 2s, write('c'));
    loop_.schedule(start + 1s, write('a'));
    loop_.schedule(start + 2s, write('d'));
    loop_.schedule(start + 1s, write('b'));
    loop_.advance(1s);
    EXPECT_EQ(log_, "ab");
    loop_.advance(10s);
    EXPECT_EQ(log_, "abcd");
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

TEST_F(EventLoopTest, TimerRestartedByItsOwnTaskGoesOn) {
    Timer tick(loop_);
    std::function<void()> again = [&] {
        log_ += 't';
        tick.start(1s, again);
    };
    tick.start(1s, again);
    loop_.advance(3500ms);
    EXPECT_EQ(log_, "ttt");
    tick.start(10s, write('r'));  // replaces the tick that is pending
    loop_.advance(11s);
    EXPECT_EQ(log_, "tttr");
}

TEST_F(EventLoopTest, TaskMayDestroyItsTimerWithAllThatItCaptured) {
    struct Owner {
        explicit Owner(EventLoop& loop) : timer(loop) {}
        std::string name = "a name that is too long to be stored in place";
        Timer timer;
    };
    auto owner = std::make_unique<Owner>(loop_);
    owner->timer.start(1s, [&owner, text = owner->name, this] {
        owner.reset();
        log_ += text;
    });
    loop_.advance(2s);
    EXPECT_EQ(log_, "a name that is too long to be stored in place");

    Timer* pending = new Timer(loop_);
    pending->start(1s, write('x'));
    delete pending;
    loop_.advance(2s);
    EXPECT_EQ(log_.back(), 'e');
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
    EXPECT_EQ(queue.nextDue(), now - 1s);
    queue.runDue(now);
    EXPECT_EQ(log_, "aa");
}

TEST_F(EventLoopTest, TasksSeeTheirOwnTimeAndAfterSleepTheLateOne) {
    const Instant start = loop_.now();
    const auto tell = [&] { log_ += std::to_string((loop_.now() - start) / 1s) + " "; };
    const MonotonicInstant base = loop_.monotonicNow();
    for (const auto delay : {10s, 20s, 30s})
        loop_.schedule(base + delay, tell);
    loop_.advance(15s);
    loop_.sleep(1h);
    EXPECT_EQ(log_, "10 3615 3615 ");
}

TEST_F(EventLoopTest, WallClockJumpsAloneAndTimersKeepTheirTime) {
    const auto keep = loop_.wallClockChanged.connect(write('w'));
    loop_.schedule(loop_.monotonicNow() + 10s, write('t'));
    loop_.setWallClock(loop_.now() - 3h);
    EXPECT_EQ(log_, "w");
    loop_.advance(9s);
    EXPECT_EQ(log_, "w");
    loop_.advance(1s);
    EXPECT_EQ(log_, "wt");
}

TEST_F(EventLoopTest, PostedTaskRunsAfterTheOneThatPostedIt) {
    loop_.schedule(loop_.monotonicNow() + 1s, [&] {
        loop_.post(write('b'));
        log_ += 'a';
    });
    loop_.advance(1s);
    EXPECT_EQ(log_, "ab");
}

}  // namespace
}  // namespace tendel

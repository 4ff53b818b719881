#include "platform/linux/pulse/PulseMainLoop.h"

#include <gtest/gtest.h>
#include <pulse/mainloop-api.h>
#include <pulse/rtclock.h>

#include "base/SimulatedEventLoop.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// Times are given from now on, on the wall clock or on the one that libpulse marks.
enum class Clock { wall, monotonic };

class PulseMainLoopTest : public ::testing::Test {
protected:
    timeval in(Duration delay, Clock clock) const {
        const Duration now = clock == Clock::wall ? loop_.now().time_since_epoch()
                                                  : Duration(static_cast<long>(pa_rtclock_now()));
        timeval time{};
        time.tv_sec = (now + delay) / 1s;
        time.tv_usec = (now + delay) % 1s / 1us;
        if (clock == Clock::monotonic) time.tv_usec |= 1 << 30;
        return time;
    }

    static void fired(pa_mainloop_api*, pa_time_event*, const timeval*, void* count) {
        ++*static_cast<int*>(count);
    }

    SimulatedEventLoop loop_{Instant(24h * 365)};
    PulseMainLoop mainLoop_{loop_};
    pa_mainloop_api* api_ = mainLoop_.api();
};

TEST_F(PulseMainLoopTest, TimesCountOnTheClockThatTheyAreGivenIn) {
    for (const Clock clock : {Clock::wall, Clock::monotonic}) {
        SCOPED_TRACE(static_cast<int>(clock));
        int count = 0;
        const timeval due = in(10s, clock), later = in(40s, clock);
        pa_time_event* event = api_->time_new(api_, &due, fired, &count);
        loop_.setWallClock(loop_.now() - 3h);
        loop_.advance(9s);
        EXPECT_EQ(count, 0);
        loop_.advance(1s);
        EXPECT_EQ(count, 1);
        loop_.setWallClock(loop_.now() + 3h);
        api_->time_restart(event, &later);
        api_->time_restart(event, nullptr);
        loop_.advance(1h);
        EXPECT_EQ(count, 1) << "without a time it is off";
        const timeval past = in(-10s, clock);
        api_->time_restart(event, &past);
        loop_.runPending();
        EXPECT_EQ(count, 2);
        api_->time_free(event);
    }
}

TEST_F(PulseMainLoopTest, DeferredWorkRunsOnceTheCallerIsDoneAndNeverSpins) {
    struct Work {
        int runs = 0;
        int runsUntilDisabled = 0;
    };
    const auto run = [](pa_mainloop_api* api, pa_defer_event* event, void* data) {
        auto& work = *static_cast<Work*>(data);
        if (++work.runs == work.runsUntilDisabled) api->defer_enable(event, 0);
    };
    Work once{.runsUntilDisabled = 1}, endless;
    pa_defer_event* event = api_->defer_new(api_, run, &once);
    EXPECT_EQ(once.runs, 0);
    loop_.runPending();
    EXPECT_EQ(once.runs, 1);
    loop_.advance(1h);
    EXPECT_EQ(once.runs, 1);
    once.runsUntilDisabled = 3;
    api_->defer_enable(event, 1);
    loop_.advance(1h);
    EXPECT_EQ(once.runs, 3);

    pa_defer_event* spinning = api_->defer_new(api_, run, &endless);
    loop_.advance(1s);
    EXPECT_GT(endless.runs, 10);
    EXPECT_LE(endless.runs, 100);
    api_->defer_free(spinning);
    EXPECT_EQ(loop_.nextDue(), std::nullopt);
}

}  // namespace
}  // namespace tendel

#pragma once

#include <deque>

#include "base/TimerQueue.h"

namespace tendel {

// Time for tests: it stands still until told to pass, and then jumps from one due task to the next.
//
//   SimulatedEventLoop loop(instant("2026-03-02T08:00:00Z"));
//   loop.advance(minutes(10));   // both clocks go on; tasks run at their exact times
//   loop.sleep(hours(2));        // both clocks go on, but tasks run late, at the end
//   loop.setWallClock(later);    // the wall clock jumps, the monotonic one does not
class SimulatedEventLoop : public EventLoop {
public:
    explicit SimulatedEventLoop(Instant now) : now_(now) {}

    Instant now() const override { return now_; }
    MonotonicInstant monotonicNow() const override { return monotonicNow_; }
    TimerId schedule(MonotonicInstant due, std::function<void()> task) override;
    void cancel(TimerId id) override;
    void post(std::function<void()> task) override;

    // Lets time pass; every task runs at its due time, also those that are added on the way.
    void advance(Duration span);
    void advanceTo(Instant wallClock) { advance(wallClock - now_); }
    // The computer sleeps: time passes, nothing runs until the end.
    void sleep(Duration span);
    // Somebody sets the clock; listeners are told.
    void setWallClock(Instant wallClock);
    // Somebody changes the zone; the listeners are told (the calendar is theirs to change).
    void changeTimeZone() { timeZoneChanged.emit(); }
    // Runs what is due or posted now without letting time pass.
    void runPending();

    std::optional<MonotonicInstant> nextDue() const { return timers_.nextDue(); }

private:
    Instant now_;
    MonotonicInstant monotonicNow_{};
    TimerQueue timers_;
    std::deque<std::function<void()>> posted_;
};

}  // namespace tendel

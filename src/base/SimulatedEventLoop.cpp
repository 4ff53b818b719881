#include "base/SimulatedEventLoop.h"

#include <algorithm>

namespace tendel {

TimerId SimulatedEventLoop::schedule(MonotonicInstant due, std::function<void()> task) {
    return timers_.add(due, std::move(task));
}

void SimulatedEventLoop::cancel(TimerId id) {
    timers_.remove(id);
}

void SimulatedEventLoop::post(std::function<void()> task) {
    posted_.push_back(std::move(task));
}

void SimulatedEventLoop::advance(Duration span) {
    const MonotonicInstant end = monotonicNow_ + span;
    runPending();
    while (const auto due = timers_.nextDue()) {
        if (*due > end) break;
        const Duration step = std::max(*due - monotonicNow_, Duration::zero());
        now_ += step;
        monotonicNow_ += step;
        runPending();
    }
    now_ += end - monotonicNow_;
    monotonicNow_ = end;
}

void SimulatedEventLoop::sleep(Duration span) {
    now_ += span;
    monotonicNow_ += span;
    runPending();
}

void SimulatedEventLoop::setWallClock(Instant wallClock) {
    now_ = wallClock;
    wallClockChanged.emit();
    runPending();
}

void SimulatedEventLoop::runPending() {
    do {
        timers_.runDue(monotonicNow_);
        while (!posted_.empty()) {
            const auto task = std::move(posted_.front());
            posted_.pop_front();
            task();
        }
    } while (timers_.nextDue() && *timers_.nextDue() <= monotonicNow_);
}

}  // namespace tendel

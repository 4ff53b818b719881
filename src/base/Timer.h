#pragma once

#include <functional>
#include <optional>
#include <utility>

#include "base/EventLoop.h"

namespace tendel {

// One pending task on the event loop. Starting it again replaces what was pending, destroying it
// cancels.
//
//   Timer autoHide_{loop_};
//   autoHide_.start(10s, [this] { hide(); });
class Timer {
public:
    explicit Timer(EventLoop& loop) : loop_(loop) {}
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;
    ~Timer() { stop(); }

    // Runs `task` once after `delay` (at once, but not within this call, when it is not positive).
    void start(Duration delay, std::function<void()> task) {
        startAt(loop_.monotonicNow() + (delay > Duration::zero() ? delay : Duration::zero()),
                std::move(task));
    }

    // Runs `task` once at `due`; ticks that are started from one another in this way do not drift.
    void startAt(MonotonicInstant due, std::function<void()> task) {
        stop();
        id_ = loop_.schedule(due, [this, task = std::move(task)] {
            id_.reset();
            const auto run = task;  // the task may destroy or restart this timer
            run();
        });
    }

    void stop() {
        if (id_) loop_.cancel(*id_);
        id_.reset();
    }

    bool isRunning() const { return id_.has_value(); }

private:
    EventLoop& loop_;
    std::optional<TimerId> id_;
};

}  // namespace tendel

#pragma once

#include <functional>
#include <map>
#include <optional>
#include <unordered_map>
#include <utility>

#include "base/EventLoop.h"

namespace tendel {

// The pending tasks of an event loop in order of their due times; both the real and the simulated
// loop keep one.
class TimerQueue {
public:
    TimerId add(MonotonicInstant due, std::function<void()> task);
    void remove(TimerId id);

    std::optional<MonotonicInstant> nextDue() const;

    // Runs, one after another, every task due by `now` that was in the queue when the call began;
    // tasks added meanwhile wait for the next call, so that a task that restarts itself cannot
    // starve the loop.
    void runDue(MonotonicInstant now);

private:
    using Key = std::pair<MonotonicInstant, TimerId>;
    std::map<Key, std::function<void()>> tasks_;
    std::unordered_map<TimerId, MonotonicInstant> dueTimes_;
    std::uint64_t lastId_ = 0;
};

}  // namespace tendel

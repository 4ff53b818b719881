#pragma once

#include <cstdint>
#include <functional>

#include "base/Instant.h"
#include "base/Signal.h"

namespace tendel {

enum class TimerId : std::uint64_t {};

// The main thread's clock and timers. Nothing in the core reads a clock or waits in any other way.
// Main thread only, except `post`.
class EventLoop {
public:
    virtual ~EventLoop() = default;

    // The wall clock: it jumps when the user or the network sets it.
    virtual Instant now() const = 0;
    // The clock that goes on while the computer sleeps and never jumps.
    virtual MonotonicInstant monotonicNow() const = 0;

    // Runs `task` once at `due` or, when that passed during sleep, right after waking. Tasks run in
    // order of their due times, those of one time in the order in which they were scheduled.
    virtual TimerId schedule(MonotonicInstant due, std::function<void()> task) = 0;
    // Forgets a scheduled task; one that ran already is ignored.
    virtual void cancel(TimerId id) = 0;

    // Runs `task` on the main thread soon, after what runs now has returned. From any thread.
    virtual void post(std::function<void()> task) = 0;

    // The wall clock was set, forwards or backwards (not: it went on as usual, also through sleep).
    Signal<> wallClockChanged;
    // The computer's time zone is another one.
    Signal<> timeZoneChanged;
};

}  // namespace tendel

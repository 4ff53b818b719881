#pragma once

#include <chrono>

namespace tendel {

// All spans of time inside Tendel: whole microseconds.
using Duration = std::chrono::microseconds;

// A moment on the wall clock, in microseconds since 1970-01-01 00:00 UTC. The wall clock can jump.
using Instant = std::chrono::sys_time<Duration>;

// The clock that never jumps and goes on while the computer sleeps (CLOCK_BOOTTIME on Linux).
struct BootClock {
    using duration = Duration;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<BootClock, Duration>;
    static constexpr bool is_steady = true;
};

// A moment on that clock; only differences mean anything.
using MonotonicInstant = BootClock::time_point;

// Converts a number of seconds, whole or not, to the nearest microsecond.
constexpr Duration seconds(double count) {
    return Duration{static_cast<Duration::rep>(count * 1e6 + (count < 0 ? -0.5 : 0.5))};
}

// Whole or fractional seconds of a span.
constexpr double toSeconds(Duration span) {
    return static_cast<double>(span.count()) / 1e6;
}

}  // namespace tendel

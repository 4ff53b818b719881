#pragma once

namespace tendel::test {

// While it lives, every allocation, release and mutex lock of this thread is counted: none belongs
// into a real-time thread. Counts nothing in a program with sanitizers, whose hooks sit in the same
// place.
class RealTimeGuard {
public:
    RealTimeGuard() { ++guards; }
    ~RealTimeGuard() { --guards; }
    RealTimeGuard(const RealTimeGuard&) = delete;
    RealTimeGuard& operator=(const RealTimeGuard&) = delete;

    // Of this thread, while there were guards.
    static int allocations() { return allocated; }
    static int locks() { return locked; }
    static const bool isAbleToCount;

    // Plain values, for hooks that run before and after everything else.
    static inline constinit thread_local int guards = 0, allocated = 0, locked = 0;
};

}  // namespace tendel::test

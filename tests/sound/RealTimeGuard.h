#pragma once

namespace tendel::test {

// While it lives, every allocation, release and mutex lock of this thread is counted: none belongs
// into a real-time thread. Counts nothing in a program with sanitizers, whose hooks sit in the same
// place.
class RealTimeGuard {
public:
    RealTimeGuard();
    ~RealTimeGuard();
    RealTimeGuard(const RealTimeGuard&) = delete;
    RealTimeGuard& operator=(const RealTimeGuard&) = delete;

    // Of this thread, while there were guards.
    static int allocations();
    static int locks();
    static bool isAbleToCount();
};

}  // namespace tendel::test

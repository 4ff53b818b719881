#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "base/Calendar.h"
#include "base/Timer.h"
#include "storage/Store.h"

namespace tendel {

// Finds how many good days in a row lead up to today without the whole history: reads backwards
// from today, some days in each turn of the event loop, until the day that broke the run. Stopped
// when it is destroyed. Main thread only; what it is given must outlive it.
class StreakSearch {
public:
    StreakSearch(const Store& store, EventLoop& loop, const Calendar& calendar);

    // Begins, or begins anew; `onFound` hears the number of days once it is known.
    void start(std::function<void(std::int64_t)> onFound);

private:
    void step();

    const Store& store_;
    EventLoop& loop_;
    const Calendar& calendar_;
    std::function<void(std::int64_t)> onFound_;
    std::int64_t days_ = 0;
    Instant now_;      // the moment that the streak is asked of
    Instant end_;      // what is before it is still to be read
    int length_ = 0;   // days of the next step
    Instant horizon_;  // nobody has a history from before it
    Timer next_{loop_};
};

}  // namespace tendel

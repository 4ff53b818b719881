#pragma once

#include <algorithm>
#include <utility>

#include "base/Instant.h"

namespace tendel {

// How long to wait before the next attempt to reach a server that is gone: half a second, then
// twice as long each time, at the most five minutes.
class Backoff {
public:
    Duration next() { return std::exchange(delay_, std::min(delay_ * 2, longest)); }
    void reset() { delay_ = shortest; }

    static constexpr Duration shortest = std::chrono::milliseconds(500);
    static constexpr Duration longest = std::chrono::minutes(5);

private:
    Duration delay_ = shortest;
};

}  // namespace tendel

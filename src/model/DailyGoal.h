#pragma once

#include <string>

#include "base/Instant.h"

namespace tendel {

// The one thing that the user wants to reach today.
struct DailyGoal {
    std::string text;
    Instant day;  // a moment of the day that the goal belongs to; stored to the second
    bool isDone = false;

    friend bool operator==(const DailyGoal&, const DailyGoal&) = default;
};

}  // namespace tendel

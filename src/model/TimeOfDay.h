#pragma once

#include <compare>

namespace tendel {

// A time of day on the user's clock, without a date or a time zone.
struct TimeOfDay {
    int hour = 0;    // 0–23
    int minute = 0;  // 0–59

    friend constexpr auto operator<=>(const TimeOfDay&, const TimeOfDay&) = default;
};

}  // namespace tendel

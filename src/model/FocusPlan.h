#pragma once

#include <optional>

namespace tendel {

// How the user divides focus time.
struct FocusPlan {
    int focusMinutes = 30;
    int breakMinutes = 5;
    std::optional<int> longBreakEvery;  // rounds; absent: no long breaks

    friend bool operator==(const FocusPlan&, const FocusPlan&) = default;
};

}  // namespace tendel

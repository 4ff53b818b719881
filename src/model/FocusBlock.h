#pragma once

#include <cstdint>
#include <optional>

#include "base/Instant.h"

namespace tendel {

// One focus phase, as it is stored.
struct FocusBlock {
    std::int64_t id = 0;  // the store's; 0 before the first save
    Instant start;
    std::optional<Instant> end;  // absent while it runs
    int plannedMinutes = 0;
    int focusedSeconds = 0;
    bool finished = false;  // ran to its end rather than being skipped or stopped

    friend bool operator==(const FocusBlock&, const FocusBlock&) = default;
};

}  // namespace tendel

#include "menubar/Countdown.h"

#include <algorithm>

namespace tendel {

std::string countdownText(Instant from, Instant to) {
    const Duration left = std::max(to - from, Duration::zero());
    // Rounded before it is split, so that 59 minutes and a second are never "60m".
    const auto minutes = std::chrono::ceil<std::chrono::minutes>(left).count();
    if (minutes > 59)
        return std::to_string(minutes / 60) + "h " + std::to_string(minutes % 60) + "m";
    return std::to_string(minutes) + "m";
}

}  // namespace tendel

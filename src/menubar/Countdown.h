#pragma once

#include <string>

#include "base/Instant.h"

namespace tendel {

// The time from `from` to `to` in minutes rounded up: "12m", "1h 5m", "2h 0m", and "0m" once it is
// over.
std::string countdownText(Instant from, Instant to);

}  // namespace tendel

#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "base/Instant.h"

namespace tendel {

// What a year of four digits holds, years 1 to 9999, to the second.
inline constexpr Instant earliestIso8601{Duration{-62'135'596'800'000'000}};
inline constexpr Instant latestIso8601{Duration{253'402'300'799'000'000}};

// "2026-03-02T08:15:30Z" for `t`, to the second.
std::string formatIso8601(Instant t);
// "2026-03-02T08:15:30.000250Z", to the microsecond; without the fraction when that is 0.
std::string formatIso8601Exactly(Instant t);
// The reverse of both; nothing when the text is not of this form or lies outside the range above.
// The offset may be Z or ±hh:mm; what a fraction has beyond microseconds is cut off.
std::optional<Instant> parseIso8601(std::string_view text);

}  // namespace tendel

#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tendel {

// The period that the statistics show.
enum class StatsRange { today, week, month };

inline constexpr std::array<std::string_view, 3> statsRangeNames{"today", "week", "month"};

constexpr std::string_view rawValue(StatsRange range) {
    return statsRangeNames[static_cast<std::size_t>(range)];
}

constexpr std::optional<StatsRange> statsRange(std::string_view raw) {
    for (std::size_t i = 0; i < statsRangeNames.size(); ++i)
        if (statsRangeNames[i] == raw) return static_cast<StatsRange>(i);
    return std::nullopt;
}

}  // namespace tendel

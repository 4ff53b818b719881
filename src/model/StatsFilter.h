#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tendel {

// Which reminders the statistics count.
enum class StatsFilter { all, work, private_ };

inline constexpr std::array<std::string_view, 3> statsFilterNames{"all", "work", "private"};

constexpr std::string_view rawValue(StatsFilter filter) {
    return statsFilterNames[static_cast<std::size_t>(filter)];
}

constexpr std::optional<StatsFilter> statsFilter(std::string_view raw) {
    for (std::size_t i = 0; i < statsFilterNames.size(); ++i)
        if (statsFilterNames[i] == raw) return static_cast<StatsFilter>(i);
    return std::nullopt;
}

}  // namespace tendel

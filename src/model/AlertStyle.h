#pragma once

#include <chrono>
#include <optional>
#include <string_view>

#include "base/Instant.h"

namespace tendel {

enum class AlertStyle { full, compact };

// "full" and "compact", the stored texts.
constexpr std::string_view rawValue(AlertStyle style) {
    return style == AlertStyle::compact ? "compact" : "full";
}

// After how long an unanswered alert hides; the values are the stored seconds.
enum class AlertAutoHide { after10Seconds = 10, after30Seconds = 30, after1Minute = 60, never = 0 };

constexpr std::optional<AlertAutoHide> alertAutoHide(long long raw) {
    if (raw != 10 && raw != 30 && raw != 60 && raw != 0) return std::nullopt;
    return static_cast<AlertAutoHide>(raw);
}

// The time on screen; absent means it stays until it is answered.
constexpr std::optional<Duration> autoHideTime(AlertAutoHide choice) {
    if (choice == AlertAutoHide::never) return std::nullopt;
    return std::chrono::seconds(static_cast<int>(choice));
}

}  // namespace tendel

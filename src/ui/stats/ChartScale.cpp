#include "ui/stats/ChartScale.h"

#include <algorithm>
#include <array>

namespace tendel {

namespace {

std::int64_t linesUpTo(std::int64_t most, std::int64_t step) {
    return std::max<std::int64_t>(1, most / step + (most % step == 0 ? 0 : 1));
}

// The first step of `steps`, or of ten times them and so on, that needs no more lines.
ChartScale scaleWith(std::span<const std::int64_t> steps, std::int64_t most, int mostLines) {
    for (std::int64_t factor = 1;; factor *= 10)
        for (const std::int64_t step : steps)
            if (const auto lines = linesUpTo(most, step * factor); lines <= mostLines)
                return {.step = step * factor, .lines = static_cast<int>(lines)};
}

}  // namespace

ChartScale ChartScale::ofCounts(std::int64_t most, int mostLines) {
    static constexpr std::array<std::int64_t, 3> steps{1, 2, 5};
    return scaleWith(steps, most, mostLines);
}

ChartScale ChartScale::ofSeconds(std::int64_t most, int mostLines) {
    constexpr std::int64_t minute = 60;
    constexpr std::int64_t hour = 60 * minute;
    static constexpr std::array<std::int64_t, 7> withinHours{
        5 * minute, 10 * minute, 15 * minute, 30 * minute, hour, 2 * hour, 4 * hour};
    static constexpr std::array<std::int64_t, 3> hours{hour, 2 * hour, 5 * hour};
    if (linesUpTo(most, withinHours.back()) <= mostLines)
        return scaleWith(withinHours, most, mostLines);
    return scaleWith(hours, most, mostLines);
}

int labelStride(std::span<const int> strides, double labelWidth, double slotWidth) {
    constexpr double gap = 12;
    const auto fits = std::ranges::find_if(
        strides, [&](int stride) { return stride * slotWidth >= labelWidth + gap; });
    return fits == strides.end() ? strides.back() : *fits;
}

}  // namespace tendel

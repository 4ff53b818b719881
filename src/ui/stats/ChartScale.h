#pragma once

#include <cstdint>
#include <span>

namespace tendel {

// The gridlines of an axis that begins at 0: `lines` of them, `step` apart. The axis ends at the
// last one.
struct ChartScale {
    std::int64_t step = 1;
    int lines = 1;

    std::int64_t top() const { return step * lines; }

    // Round steps (1, 2 or 5 times a power of ten) for counts of up to `most`.
    static ChartScale ofCounts(std::int64_t most, int mostLines);
    // Steps that a clock has (5 minutes, a quarter of an hour, …, hours), in seconds.
    static ChartScale ofSeconds(std::int64_t most, int mostLines);

    friend bool operator==(const ChartScale&, const ChartScale&) = default;
};

// Every how many slots a label of that width has room: the first of `strides` that fits, else the
// last.
int labelStride(std::span<const int> strides, double labelWidth, double slotWidth);

}  // namespace tendel

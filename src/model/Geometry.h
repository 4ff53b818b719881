#pragma once

namespace tendel {

// Lengths are in one unit throughout: device-independent pixels for what Tendel shows itself, the
// display server's own for what it is told of other windows. y grows downwards.
struct Size {
    double width = 0;
    double height = 0;
    friend constexpr bool operator==(const Size&, const Size&) = default;
};

struct Rect {
    double x = 0;
    double y = 0;
    double width = 0;
    double height = 0;

    constexpr double minX() const { return x; }
    constexpr double maxX() const { return x + width; }
    constexpr double minY() const { return y; }
    constexpr double maxY() const { return y + height; }
    constexpr bool contains(double px, double py) const {
        return px >= x && px < x + width && py >= y && py < y + height;
    }
    friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

}  // namespace tendel

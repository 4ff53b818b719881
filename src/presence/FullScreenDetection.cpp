#include "presence/FullScreenDetection.h"

#include <algorithm>

namespace tendel {

namespace {

// What a window may fall short of an edge, for rounding.
constexpr double tolerance = 1;

bool containsWhenGrown(const Rect& outer, const Rect& inner) {
    return outer.minX() - tolerance <= inner.minX() && outer.minY() - tolerance <= inner.minY() &&
           outer.maxX() + tolerance >= inner.maxX() && outer.maxY() + tolerance >= inner.maxY();
}

bool covers(const Rect& window, const Rect& screen, TopEdge topEdge) {
    return window.minX() <= screen.minX() + tolerance &&
           window.maxX() >= screen.maxX() - tolerance &&
           window.maxY() >= screen.maxY() - tolerance &&
           (topEdge == TopEdge::ignored || window.minY() <= screen.minY() + tolerance);
}

}  // namespace

bool FullScreenDetection::isFullScreen(const std::vector<Window>& windows, const Rect& screen,
                                       TopEdge topEdge) {
    // The desktop's own overview lies over everything, whatever is below it.
    const bool isOverview = std::ranges::any_of(windows, [&](const Window& window) {
        return window.isDock && containsWhenGrown(window.bounds, screen);
    });
    if (isOverview) return false;
    return std::ranges::any_of(windows, [&](const Window& window) {
        return !window.isDock && window.layer == 0 && !window.isMaximized &&
               covers(window.bounds, screen, topEdge);
    });
}

}  // namespace tendel

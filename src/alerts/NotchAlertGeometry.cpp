#include "alerts/NotchAlertGeometry.h"

#include <algorithm>

namespace tendel {

namespace {

// What the open alert adds below the notch or the menu bar.
double contentHeight(AlertStyle style) {
    return style == AlertStyle::compact ? 40 : 140;
}

// Room in the panel for a spring that shoots past its target.
constexpr double overshoot = 40;

}  // namespace

std::optional<Size> ScreenInfo::notchSize() const {
    if (safeAreaTop <= 0 || !auxiliaryTopLeftWidth || !auxiliaryTopRightWidth) return std::nullopt;
    return Size{frame.width - *auxiliaryTopLeftWidth - *auxiliaryTopRightWidth, safeAreaTop};
}

NotchAlertGeometry NotchAlertGeometry::of(const ScreenInfo& screen,
                                          std::optional<double> restingWidth, AlertStyle style) {
    return {screen.notchSize(), screen.menuBarHeight, restingWidth, style};
}

double NotchAlertGeometry::baseHeight() const {
    return notchSize ? notchSize->height : menuBarHeight;
}

Rect NotchAlertGeometry::panelFrame(const Rect& screen) const {
    const double width = style == AlertStyle::compact ? 440 : 468;
    const double height = baseHeight() + contentHeight(style) + overshoot;
    return {screen.x + (screen.width - width) / 2, screen.y, width, height};
}

AlertOutline NotchAlertGeometry::outline(NotchAlertPhase phase) const {
    switch (phase) {
        case NotchAlertPhase::hidden:
            if (!notchSize) return {};
            if (restingWidth) return {*restingWidth, notchSize->height, 6, 12};
            return {notchSize->width, notchSize->height, 0, 9};
        case NotchAlertPhase::peek:
            if (!notchSize) return {44, 34, 5, 17};
            return {restingWidth.value_or(notchSize->width) + 36, notchSize->height + 6, 6, 14};
        case NotchAlertPhase::expanded:
            if (style == AlertStyle::compact)
                return {360, baseHeight() + contentHeight(style), 10, 16};
            return {388, baseHeight() + contentHeight(style), 14, 28};
        case NotchAlertPhase::done:
            return {notchSize ? std::max(notchSize->width + 90, 280.0) : 280,
                    baseHeight() + 48 + 10, 10, 22};
    }
    return {};
}

}  // namespace tendel

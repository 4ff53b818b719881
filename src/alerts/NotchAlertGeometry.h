#pragma once

#include <optional>
#include <string>

#include "model/AlertStyle.h"
#include "model/Geometry.h"

namespace tendel {

// What is known of one screen, in device-independent pixels.
struct ScreenInfo {
    std::string name{};  // as the desktop calls the output
    Rect frame{};
    double menuBarHeight = 0;  // of the panel at the top, 0 without one
    // Of a display whose top edge has a camera housing: the inset that keeps clear of it, and the
    // widths of the areas left and right of it. All three are there, or the screen counts as one
    // without a notch.
    double safeAreaTop = 0;
    std::optional<double> auxiliaryTopLeftWidth{};
    std::optional<double> auxiliaryTopRightWidth{};

    std::optional<Size> notchSize() const;
    friend bool operator==(const ScreenInfo&, const ScreenInfo&) = default;
};

enum class NotchAlertPhase { hidden, peek, expanded, done };

// The alert's shape: its top corners flare outwards into the screen's edge with `topRadius`, its
// bottom corners are rounded with `bottomRadius`. Centred at the top of the screen.
struct AlertOutline {
    double width = 0;
    double height = 0;
    double topRadius = 0;
    double bottomRadius = 0;
    friend constexpr bool operator==(const AlertOutline&, const AlertOutline&) = default;
};

// The measures of the alert on one screen.
struct NotchAlertGeometry {
    std::optional<Size> notchSize;  // absent on displays without a notch
    double menuBarHeight = 0;
    std::optional<double> restingWidth;  // of the live pill, when one rests beside the notch
    AlertStyle style = AlertStyle::full;

    static NotchAlertGeometry of(const ScreenInfo& screen, std::optional<double> restingWidth,
                                 AlertStyle style);

    // The notch's height, else the menu bar's.
    double baseHeight() const;
    // The panel that holds the alert: 468 or 440 wide, centred at the top edge of the screen.
    Rect panelFrame(const Rect& screen) const;
    AlertOutline outline(NotchAlertPhase phase) const;

    friend bool operator==(const NotchAlertGeometry&, const NotchAlertGeometry&) = default;
};

}  // namespace tendel

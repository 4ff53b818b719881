#pragma once

#include "alerts/NotchAlertGeometry.h"

namespace tendel {

enum class NotchLivePhase { hidden, pill, card };

// The measures of the live pill on the screen with the notch.
struct NotchLiveGeometry {
    Size notchSize{};

    double pillWidth() const;
    // The panel that holds the pill and its card, centred at the top edge of the screen.
    Rect panelFrame(const Rect& screen) const;
    // Where the pill is there for the pointer, in the coordinates of `screen`.
    Rect liveArea(NotchLivePhase phase, const Rect& screen) const;
    // The shape that is drawn; the alert grows out of the pill's.
    AlertOutline outline(NotchLivePhase phase) const;

    friend bool operator==(const NotchLiveGeometry&, const NotchLiveGeometry&) = default;
};

}  // namespace tendel

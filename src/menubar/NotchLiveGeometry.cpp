#include "menubar/NotchLiveGeometry.h"

namespace tendel {

namespace {

constexpr double besideNotch = 88;  // both sides together
constexpr double cardWidth = 400;
constexpr double belowNotch = 92;
// Room for a spring that shoots past its target, and for the flares of the top corners.
constexpr double margin = 40;

Rect hanging(const Rect& screen, double width, double height) {
    return {screen.x + (screen.width - width) / 2, screen.y, width, height};
}

// As the alert's: it grows out of the bare notch, and out of the resting pill.
AlertOutline alertOutline(const Size& notch, std::optional<double> restingWidth) {
    return NotchAlertGeometry{.notchSize = notch, .restingWidth = restingWidth}.outline(
        NotchAlertPhase::hidden);
}

}  // namespace

double NotchLiveGeometry::pillWidth() const {
    return notchSize.width + besideNotch;
}

Rect NotchLiveGeometry::panelFrame(const Rect& screen) const {
    return hanging(screen, cardWidth + 2 * margin, notchSize.height + belowNotch + margin);
}

Rect NotchLiveGeometry::liveArea(NotchLivePhase phase, const Rect& screen) const {
    const AlertOutline shape = outline(phase);
    return hanging(screen, shape.width, shape.height);
}

AlertOutline NotchLiveGeometry::outline(NotchLivePhase phase) const {
    switch (phase) {
        case NotchLivePhase::hidden:
            return alertOutline(notchSize, std::nullopt);
        case NotchLivePhase::pill:
            return alertOutline(notchSize, pillWidth());
        case NotchLivePhase::card:
            break;
    }
    return {cardWidth, notchSize.height + belowNotch, 14, 28};
}

}  // namespace tendel

#pragma once

#include <QWidget>

#include <optional>

#include "alerts/NotchAlertGeometry.h"
#include "alerts/NotchAlertMotion.h"

namespace tendel {

// How a change is made: along the curve, or at once without one.
struct Change {
    std::optional<MotionCurve> curve{};
    double speed = 1;
    MonotonicInstant now{};
};

// Heads for the target, but lets a motion that goes there already go on.
void headFor(AnimatedValue& value, double target, const Change& change);
// Of a value that fades: 0–1, also where a spring shoots past.
double opacityAt(const AnimatedValue& value, MonotonicInstant now);
// Milliseconds from frame to frame on the widget's screen.
int frameInterval(const QWidget& widget);

// An outline that moves from one phase's to another's; with reduced motion it comes and goes by
// fading in place. Plain value.
class AnimatedOutline {
public:
    enum class Manner { grow, fade };

    void headFor(const AlertOutline& outline, bool isHidden, Manner manner, const Change& change);

    AlertOutline value(MonotonicInstant now) const;
    // How opaque it is, 0–1.
    double presence(MonotonicInstant now) const { return opacityAt(presence_, now); }
    bool isAtRest(MonotonicInstant now) const;

private:
    AnimatedValue width_, height_, topRadius_, bottomRadius_;
    AnimatedValue presence_{1};
};

}  // namespace tendel

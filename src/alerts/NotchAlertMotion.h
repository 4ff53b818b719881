#pragma once

#include "base/Instant.h"

namespace tendel {

// How a change of the alert moves. A spring is given by its response (the period of the undamped
// oscillation, in seconds) and its damping fraction (1 = critical, the most); an easing by its
// duration.
struct MotionCurve {
    enum class Kind { spring, easeIn, easeOut, easeInOut };
    Kind kind = Kind::easeInOut;
    double seconds = 0.25;  // response or duration
    double damping = 1;     // springs only

    friend constexpr bool operator==(const MotionCurve&, const MotionCurve&) = default;
};

namespace NotchAlertMotion {
inline constexpr MotionCurve bulge{MotionCurve::Kind::easeIn, 0.3};
inline constexpr MotionCurve drop{MotionCurve::Kind::spring, 0.24, 0.85};
inline constexpr MotionCurve expand{MotionCurve::Kind::spring, 0.5, 0.7};
inline constexpr MotionCurve contentIn{MotionCurve::Kind::easeOut, 0.28};
inline constexpr MotionCurve contentOut{MotionCurve::Kind::easeOut, 0.24};
inline constexpr MotionCurve collapse{MotionCurve::Kind::spring, 0.42, 1.0};
inline constexpr MotionCurve collapseToDrop{MotionCurve::Kind::spring, 0.38, 1.0};
inline constexpr MotionCurve dropOut{MotionCurve::Kind::easeIn, 0.2};
inline constexpr MotionCurve swap{MotionCurve::Kind::spring, 0.35, 1.0};
inline constexpr MotionCurve completion{MotionCurve::Kind::spring, 0.35, 0.7};
inline constexpr MotionCurve reduced{MotionCurve::Kind::easeInOut, 0.25};
inline constexpr MotionCurve compactGrow{MotionCurve::Kind::easeOut, 0.2};
inline constexpr MotionCurve compactShrink{MotionCurve::Kind::easeIn, 0.18};
}  // namespace NotchAlertMotion

// One animated number on its way to a target. `value` is exact for any step, so that a dropped
// frame changes nothing, and a new target in mid-motion keeps place and (for springs) speed. Plain
// value, no allocation.
class AnimatedValue {
public:
    explicit AnimatedValue(double value = 0) : from_(value), target_(value) {}

    // Heads for `target` from where it is `now`.
    void animate(double target, const MotionCurve& curve, double speed, MonotonicInstant now);
    // Is there at once.
    void jump(double target);

    double value(MonotonicInstant now) const;
    double target() const { return target_; }
    // Whether it has arrived (a spring: within 0.1 % of its way, and slow); `value` is the target
    // then.
    bool isAtRest(MonotonicInstant now) const;

private:
    struct State {
        double value = 0;
        double velocity = 0;  // units a second
        bool isAtRest = false;
    };
    State at(MonotonicInstant now) const;

    MotionCurve curve_;
    double speed_ = 1;
    double from_ = 0;
    double target_ = 0;
    double startVelocity_ = 0;
    MonotonicInstant start_{};
    bool isMoving_ = false;
};

}  // namespace tendel

#include "alerts/NotchAlertMotion.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tendel {

namespace {

// Of the energy that it started with, what is left when a spring counts as still: 0.1 % of its way.
constexpr double restingEnergy = 0.001 * 0.001;

double angularFrequency(const MotionCurve& curve) {
    return 2 * std::numbers::pi / curve.seconds;
}

struct Motion {
    double offset = 0;    // from the target
    double velocity = 0;  // units a second of the curve's own time
};

// The free motion of a unit mass on a spring of stiffness w² and damping 2·fraction·w, `t` seconds
// after it was released (the solution of x″ + 2·fraction·w·x′ + w²·x = 0).
Motion spring(const MotionCurve& curve, Motion start, double t) {
    const double w = angularFrequency(curve);
    const double fraction = std::clamp(curve.damping, 0.0, 1.0);
    const double decay = fraction * w;
    const double fading = std::exp(-decay * t);
    const double push = start.velocity + decay * start.offset;
    if (fraction == 1)
        return {fading * (start.offset + push * t), fading * (start.velocity - decay * push * t)};
    const double damped = w * std::sqrt(1 - fraction * fraction);
    const double cosine = std::cos(damped * t);
    const double sine = std::sin(damped * t);
    return {fading * (start.offset * cosine + push / damped * sine),
            fading *
                (start.velocity * cosine - (decay * push / damped + damped * start.offset) * sine)};
}

// Monotone by every step, unlike the single coordinates of an oscillation.
double energy(const MotionCurve& curve, Motion motion) {
    const double speed = motion.velocity / angularFrequency(curve);
    return motion.offset * motion.offset + speed * speed;
}

// A cubic Bézier curve from (0, 0) to (1, 1) whose control points lie at the heights 0 and 1.
struct Easing {
    double firstX = 0;
    double secondX = 1;

    static Easing of(MotionCurve::Kind kind) {
        switch (kind) {
            case MotionCurve::Kind::easeIn:
                return {0.42, 1};
            case MotionCurve::Kind::easeOut:
                return {0, 0.58};
            default:
                return {0.42, 0.58};
        }
    }

    static double y(double s) { return s * s * (3 - 2 * s); }
    static double ySlope(double s) { return 6 * s * (1 - s); }
    double x(double s) const {
        const double r = 1 - s;
        return 3 * r * r * s * firstX + 3 * r * s * s * secondX + s * s * s;
    }
    double xSlope(double s) const {
        const double r = 1 - s;
        return 3 * r * r * firstX + 6 * r * s * (secondX - firstX) + 3 * s * s * (1 - secondX);
    }

    // The parameter at which the curve is at `at`: x grows with it, so halving finds it to the last
    // bit that matters in a picture.
    double parameter(double at) const {
        double low = 0;
        double high = 1;
        for (int i = 0; i < 40; ++i) {
            const double middle = (low + high) / 2;
            (x(middle) < at ? low : high) = middle;
        }
        return (low + high) / 2;
    }
};

}  // namespace

void AnimatedValue::animate(double target, const MotionCurve& curve, double speed,
                            MonotonicInstant now) {
    if (curve.seconds <= 0 || speed <= 0) return jump(target);
    const State state = at(now);
    from_ = state.value;
    startVelocity_ = state.velocity;
    target_ = target;
    curve_ = curve;
    speed_ = speed;
    start_ = now;
    isMoving_ = from_ != target_ || startVelocity_ != 0;
}

void AnimatedValue::jump(double target) {
    from_ = target_ = target;
    startVelocity_ = 0;
    isMoving_ = false;
}

double AnimatedValue::value(MonotonicInstant now) const {
    return at(now).value;
}

bool AnimatedValue::isAtRest(MonotonicInstant now) const {
    return at(now).isAtRest;
}

AnimatedValue::State AnimatedValue::at(MonotonicInstant now) const {
    const State arrived{target_, 0, true};
    if (!isMoving_) return arrived;
    const double t = std::max(toSeconds(now - start_), 0.0) * speed_;

    if (curve_.kind == MotionCurve::Kind::spring) {
        const Motion start{from_ - target_, startVelocity_ / speed_};
        const Motion motion = spring(curve_, start, t);
        if (energy(curve_, motion) <= restingEnergy * energy(curve_, start)) return arrived;
        return {target_ + motion.offset, motion.velocity * speed_, false};
    }

    if (t >= curve_.seconds) return arrived;
    const Easing easing = Easing::of(curve_.kind);
    const double s = easing.parameter(t / curve_.seconds);
    const double slope = easing.xSlope(s);
    const double way = target_ - from_;
    const double velocity =
        slope > 0 ? way * Easing::ySlope(s) / slope * speed_ / curve_.seconds : 0;
    return {from_ + way * Easing::y(s), velocity, false};
}

}  // namespace tendel

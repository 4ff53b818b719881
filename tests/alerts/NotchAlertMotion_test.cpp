#include "alerts/NotchAlertMotion.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace tendel {
namespace {

namespace Motion = NotchAlertMotion;

MonotonicInstant at(double time) {
    return MonotonicInstant(seconds(time));
}

// Small steps of x″ = -(2π/response)²·x - (4π·damping/response)·x′, where x is the way left.
struct Integration {
    double x;
    double v;
    void advance(const MotionCurve& curve, double time) {
        const double stiffness = std::pow(2 * std::numbers::pi / curve.seconds, 2);
        const double damping = 4 * std::numbers::pi * curve.damping / curve.seconds;
        constexpr double step = 1e-6;
        for (double t = 0; t < time; t += step) {
            const double half = v + step / 2 * (-stiffness * x - damping * v);
            x += step * half;
            v = half + step / 2 * (-stiffness * x - damping * half);
        }
    }
};

TEST(AnimatedValueTest, SpringAgreesWithAFineIntegrationThroughANewTarget) {
    for (const MotionCurve& first : {Motion::drop, Motion::expand, Motion::collapse})
        for (const MotionCurve& second : {Motion::expand, Motion::swap}) {
            AnimatedValue value(10);
            value.animate(110, first, 1, at(5));
            Integration expected{-100, 0};
            expected.advance(first, 0.05);
            EXPECT_NEAR(value.value(at(5.05)), 110 + expected.x, 0.01);
            expected.advance(first, 0.05);
            value.animate(60, second, 1, at(5.1));
            expected.x += 110 - 60;
            EXPECT_NEAR(value.value(at(5.1)), 60 + expected.x, 0.01) << "it keeps its place";
            expected.advance(second, 0.08);
            EXPECT_NEAR(value.value(at(5.18)), 60 + expected.x, 0.01) << "and its velocity";
        }
}

TEST(AnimatedValueTest, EveryCurveArrivesAndComesToRestOnlyThere) {
    for (const MotionCurve& curve :
         {Motion::bulge, Motion::drop, Motion::expand, Motion::contentIn, Motion::contentOut,
          Motion::collapse, Motion::collapseToDrop, Motion::dropOut, Motion::swap,
          Motion::completion, Motion::reduced, Motion::compactGrow, Motion::compactShrink}) {
        AnimatedValue value(-4);
        value.animate(388, curve, 1, at(0));
        EXPECT_NEAR(value.value(at(0.0005)), -4, 2) << "it starts where it was";
        EXPECT_FALSE(value.isAtRest(at(0.15)));
        double rest = 0;
        while (rest < 3 && !value.isAtRest(at(rest)))
            rest += 0.001;
        EXPECT_LT(rest, 1.2);
        EXPECT_NEAR(value.value(at(rest - 0.001)), 388, 0.01 * 392) << "no jump at the end";
        EXPECT_EQ(value.value(at(rest)), 388);
    }
}

TEST(AnimatedValueTest, EasesAlongItsBezierCurve) {
    // Points of the curves with the control points (0.42, 0, 1, 1), (0, 0, 0.58, 1) and (0.42, 0,
    // 0.58, 1), at the parameters 1/4, 1/2 and 3/4.
    struct Row {
        MotionCurve::Kind kind;
        double time, place;
    };
    const Row rows[] = {
        {MotionCurve::Kind::easeIn, 0.3334375, 0.15625},
        {MotionCurve::Kind::easeIn, 0.6575, 0.5},
        {MotionCurve::Kind::easeOut, 0.3425, 0.5},
        {MotionCurve::Kind::easeOut, 0.6665625, 0.84375},
        {MotionCurve::Kind::easeInOut, 0.274375, 0.15625},
    };
    for (const auto& [kind, time, place] : rows) {
        AnimatedValue value;
        value.animate(1, {kind, 2}, 1, at(0));
        EXPECT_NEAR(value.value(at(2 * time)), place, 1e-5);
    }
}

TEST(AnimatedValueTest, SpeedDividesTheTimeAndCarriesTheVelocityOver) {
    for (const MotionCurve& curve : {Motion::expand, Motion::contentIn}) {
        AnimatedValue slow;
        AnimatedValue fast;
        slow.animate(100, curve, 0.1, at(0));
        fast.animate(100, curve, 2, at(0));
        EXPECT_NEAR(slow.value(at(1)), fast.value(at(0.05)), 1e-6);
    }
    AnimatedValue atOnce(1);
    atOnce.animate(5, {MotionCurve::Kind::easeIn, 0}, 1, at(0));
    EXPECT_EQ(atOnce.value(at(0)), 5);
    atOnce.animate(7, Motion::expand, 0, at(0));
    EXPECT_TRUE(atOnce.isAtRest(at(0)));
    // A spring that takes over from an easing goes on at its speed: halfway, the slope 1.5 / 0.87
    // of the curve.
    AnimatedValue value;
    value.animate(100, {MotionCurve::Kind::easeInOut, 1}, 1, at(0));
    value.animate(200, Motion::expand, 1, at(0.5));
    const double slope = (value.value(at(0.5001)) - value.value(at(0.5))) / 0.0001;
    EXPECT_NEAR(slope, 100 * 1.5 / 0.87, 5);
}

}  // namespace
}  // namespace tendel

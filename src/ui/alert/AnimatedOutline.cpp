#include "ui/alert/AnimatedOutline.h"

#include <QScreen>

#include <algorithm>

namespace tendel {

void headFor(AnimatedValue& value, double target, const Change& change) {
    if (!change.curve)
        value.jump(target);
    else if (value.target() != target)
        value.animate(target, *change.curve, change.speed, change.now);
}

double opacityAt(const AnimatedValue& value, MonotonicInstant now) {
    return std::clamp(value.value(now), 0.0, 1.0);
}

int frameInterval(const QWidget& widget) {
    constexpr double usualRefreshRate = 60;  // where the screen does not tell its own
    const double told = widget.screen() ? widget.screen()->refreshRate() : 0;
    return std::max(static_cast<int>(1000 / (told > 1 ? told : usualRefreshRate)), 1);
}

void AnimatedOutline::headFor(const AlertOutline& outline, bool isHidden, Manner manner,
                              const Change& change) {
    const bool fades = manner == Manner::fade;
    if (fades && !isHidden && presence_.target() == 0) presence_.jump(0);
    Change presenceChange = change;
    if (!fades) presenceChange.curve.reset();
    tendel::headFor(presence_, fades && isHidden ? 0 : 1, presenceChange);
    if (fades && isHidden && change.curve) return;
    Change shapeChange = change;
    if (fades) shapeChange.curve.reset();
    tendel::headFor(width_, outline.width, shapeChange);
    tendel::headFor(height_, outline.height, shapeChange);
    tendel::headFor(topRadius_, outline.topRadius, shapeChange);
    tendel::headFor(bottomRadius_, outline.bottomRadius, shapeChange);
}

AlertOutline AnimatedOutline::value(MonotonicInstant now) const {
    return {width_.value(now), height_.value(now), topRadius_.value(now), bottomRadius_.value(now)};
}

bool AnimatedOutline::isAtRest(MonotonicInstant now) const {
    return width_.isAtRest(now) && height_.isAtRest(now) && topRadius_.isAtRest(now) &&
           bottomRadius_.isAtRest(now) && presence_.isAtRest(now);
}

}  // namespace tendel

#include "ui/alert/AlertShape.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace tendel {

namespace {

// A spring may shoot below nothing, and the radii of two phases need not fit the size between.
AlertOutline fitted(const AlertOutline& outline) {
    AlertOutline fit;
    fit.width = std::max(outline.width, 0.0);
    fit.height = std::max(outline.height, 0.0);
    fit.topRadius = std::clamp(outline.topRadius, 0.0, std::min(fit.width / 2, fit.height));
    fit.bottomRadius =
        std::clamp(outline.bottomRadius, 0.0,
                   std::min(fit.width / 2 - fit.topRadius, fit.height - fit.topRadius));
    return fit;
}

bool isNothing(const AlertOutline& outline) {
    return outline.width < 0.5 || outline.height < 0.5;
}

// How far the side lies inside the outline's width, `y` below the edge of the screen.
double inset(const AlertOutline& outline, double y) {
    const double top = outline.topRadius;
    const double bottom = outline.bottomRadius;
    if (y < top) return std::sqrt(top * top - (top - y) * (top - y));
    const double below = y - (outline.height - bottom);
    if (below <= 0) return top;
    return top + bottom - std::sqrt(std::max(bottom * bottom - below * below, 0.0));
}

}  // namespace

QPainterPath alertPath(const AlertOutline& wanted, double middle) {
    const AlertOutline outline = fitted(wanted);
    QPainterPath path;
    if (isNothing(outline)) return path;
    const double left = middle - outline.width / 2;
    const double right = middle + outline.width / 2;
    const double top = outline.topRadius;
    const double bottom = outline.bottomRadius;
    const double lowest = outline.height - 2 * bottom;
    path.moveTo(left, 0);
    path.arcTo(left - top, 0, 2 * top, 2 * top, 90, -90);
    path.arcTo(left + top, lowest, 2 * bottom, 2 * bottom, 180, 90);
    path.arcTo(right - top - 2 * bottom, lowest, 2 * bottom, 2 * bottom, 270, 90);
    path.arcTo(right - top, 0, 2 * top, 2 * top, 180, -90);
    path.lineTo(right, 0);  // an arc without a radius draws nothing
    path.closeSubpath();
    return path;
}

QRegion alertRegion(const AlertOutline& wanted, double middle) {
    const AlertOutline outline = fitted(wanted);
    if (isNothing(outline)) return QRegion(-2, -2, 1, 1);
    // The side runs inwards further down on both curves, so the upper end of a row is its widest.
    std::vector<QRect> rows;
    const int height = static_cast<int>(std::ceil(outline.height));
    for (int y = 0; y < height; ++y) {
        const double half = outline.width / 2 - inset(outline, y);
        const int left = static_cast<int>(std::floor(middle - half));
        const int right = static_cast<int>(std::ceil(middle + half));
        if (!rows.empty() && rows.back().left() == left && rows.back().width() == right - left)
            rows.back().setHeight(rows.back().height() + 1);
        else
            rows.emplace_back(left, y, right - left, 1);
    }
    QRegion region;
    region.setRects(rows.data(), static_cast<int>(rows.size()));
    return region;
}

}  // namespace tendel

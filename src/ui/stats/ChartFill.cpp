#include "ui/stats/ChartFill.h"

#include <QPainterPath>

#include <algorithm>
#include <cmath>

namespace tendel {

namespace {

constexpr double radius = 2;
constexpr double hatchDistance = 5;  // from one line to the next, along the bar's edge
constexpr double hatchWidth = 1.75;
constexpr double dotDistance = 5;
constexpr double dotSize = 2.25;

// Lines from lower left to upper right.
void hatch(QPainter& painter, const QRectF& bar, const QColor& ink) {
    painter.setPen(QPen(ink, hatchWidth));
    for (double x = bar.left() - bar.height(); x < bar.right(); x += hatchDistance)
        painter.drawLine(QPointF(x, bar.bottom()), QPointF(x + bar.height(), bar.top()));
}

// As many columns of dots as fit beside each other, in the middle.
void dot(QPainter& painter, const QRectF& bar, const QColor& ink) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(ink);
    const int columns = std::max(1, static_cast<int>(std::floor(bar.width() / dotDistance)));
    const double left = bar.center().x() - (columns - 1) * dotDistance / 2;
    for (double y = bar.bottom() - dotDistance / 2 - 0.5; y > bar.top() - dotSize; y -= dotDistance)
        for (int column = 0; column < columns; ++column)
            painter.drawEllipse(QPointF(left + column * dotDistance, y), dotSize / 2, dotSize / 2);
}

}  // namespace

Theme::Color colorOf(ChartFill fill) {
    switch (fill) {
        case ChartFill::done:
            return Theme::Color::good;
        case ChartFill::missed:
            return Theme::Color::missed;
        case ChartFill::snoozed:
            return Theme::Color::snoozed;
        case ChartFill::focus:
            break;
    }
    return Theme::Color::focusAccent;
}

void drawBar(QPainter& painter, const QRectF& bar, ChartFill fill, double opacity) {
    if (bar.isEmpty()) return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(painter.opacity() * opacity);
    const QColor ink = Theme::instance().color(colorOf(fill));
    const double round = std::min({radius, bar.width() / 2, bar.height() / 2});
    QPainterPath shape;
    shape.addRoundedRect(bar, round, round);
    const bool hasPattern = fill != ChartFill::done;
    // A sliver has no room for a pattern.
    constexpr double leastForPattern = 3;
    if (!hasPattern || bar.height() < leastForPattern) {
        painter.fillPath(shape, ink);
    } else {
        const double tint = fill == ChartFill::focus ? 0.4 : 0.22;
        painter.fillPath(shape, blended(ink, Theme::instance().color(Theme::Color::surface), tint));
        painter.setClipPath(shape, Qt::IntersectClip);
        if (fill == ChartFill::missed) hatch(painter, bar, ink);
        if (fill == ChartFill::snoozed) dot(painter, bar, ink);
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(ink, 2));  // of which the clip leaves the inner half
        painter.drawPath(shape);
    }
    painter.restore();
}

}  // namespace tendel

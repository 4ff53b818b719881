#include "ui/alert/AlertMarks.h"

#include <QLineF>
#include <QPainterPath>

#include <algorithm>
#include <array>
#include <cmath>

#include "ui/theme/Theme.h"

namespace tendel {

namespace {

// The first `part` (0–1) of the lines through the points.
QPainterPath beginning(const std::array<QPointF, 3>& points, double part) {
    std::array<double, 2> lengths{QLineF(points[0], points[1]).length(),
                                  QLineF(points[1], points[2]).length()};
    double left = std::clamp(part, 0.0, 1.0) * (lengths[0] + lengths[1]);
    QPainterPath path(points[0]);
    for (std::size_t i = 0; i < lengths.size() && left > 0; ++i) {
        path.lineTo(QLineF(points[i], points[i + 1]).pointAt(std::min(left / lengths[i], 1.0)));
        left -= lengths[i];
    }
    return path;
}

}  // namespace

void drawRing(QPainter& painter, const QRectF& box, double width, const QColor& color,
              double part) {
    const double in = width / 2;
    const QRectF ring = box.adjusted(in, in, -in, -in);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QColor(255, 255, 255, 48), width));
    painter.drawEllipse(ring);
    constexpr double circle = 360 * 16;  // in Qt's sixteenths of a degree
    const int span = static_cast<int>(std::lround(circle * std::clamp(part, 0.0, 1.0)));
    painter.setPen(QPen(color, width, Qt::SolidLine, Qt::RoundCap));
    if (span > 0) painter.drawArc(ring, 90 * 16, span);
}

void drawCheckMark(QPainter& painter, const QRectF& box, double width, double part) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::color(Theme::Color::good, Theme::Scheme::dark), width, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    painter.drawPath(
        beginning({QPointF(box.left(), box.top() + box.height() * 0.55),
                   QPointF(box.left() + box.width() * 0.36, box.bottom()), box.topRight()},
                  part));
}

}  // namespace tendel

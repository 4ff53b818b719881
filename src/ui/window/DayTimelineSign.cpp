#include "ui/window/DayTimelineSign.h"

#include <QPainterPath>

#include "ui/theme/Theme.h"
#include "ui/window/DayTimelineLayout.h"

namespace tendel {

namespace {

constexpr double radius = DayTimelineLayout::signSize / 2;

QPainterPath circle(double size, QPointF offset = {}) {
    QPainterPath path;
    path.addEllipse(offset, size, size);
    return path;
}

QPen pen(const QColor& color, double width) {
    return {color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

}  // namespace

void drawSign(QPainter& painter, DayTimeline::State state, QPointF centre, const QColor& color) {
    painter.save();
    painter.translate(centre);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    switch (state) {
        case DayTimeline::State::done: {
            painter.drawPath(circle(radius));
            painter.setPen(pen(Theme::instance().color(Theme::Color::surface), 1.75));
            painter.setBrush(Qt::NoBrush);
            const QPointF check[] = {{-2.6, 0.1}, {-0.8, 2.0}, {2.7, -1.9}};
            painter.drawPolyline(check, 3);
            break;
        }
        case DayTimeline::State::missed: {
            constexpr double arm = 3.6;
            painter.setPen(pen(color, 2.25));
            painter.drawLine(QPointF(-arm, -arm), QPointF(arm, arm));
            painter.drawLine(QPointF(-arm, arm), QPointF(arm, -arm));
            break;
        }
        case DayTimeline::State::snoozed:
            painter.drawPath(
                circle(radius).subtracted(circle(radius * 0.82, {radius * 0.5, -radius * 0.38})));
            break;
        case DayTimeline::State::kept:
            painter.drawRoundedRect(QRectF(-4.5, -5, 3.25, 10), 1.25, 1.25);
            painter.drawRoundedRect(QRectF(1.25, -5, 3.25, 10), 1.25, 1.25);
            break;
        case DayTimeline::State::showing: {
            painter.drawPath(circle(3.25));
            painter.setBrush(Qt::NoBrush);
            painter.setPen(pen(color, 1.5));
            painter.drawPath(circle(radius - 0.75));
            break;
        }
        case DayTimeline::State::coming:
            painter.setBrush(Qt::NoBrush);
            painter.setPen(pen(color, 1.75));
            painter.drawPath(circle(3.6));
            break;
    }
    painter.restore();
}

}  // namespace tendel

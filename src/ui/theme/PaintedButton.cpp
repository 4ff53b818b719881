#include "ui/theme/PaintedButton.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include "ui/theme/Theme.h"

namespace tendel {

void drawFocusRing(QPainter& painter, const QRectF& shape, double radius) {
    constexpr double width = 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::instance().color(Theme::Color::workAccent), width));
    const double out = 1 + width / 2;
    painter.drawRoundedRect(shape.adjusted(-out, -out, out, out), radius + out, radius + out);
}

void drawHairline(QPainter& painter, const QRectF& shape, double radius, const QColor& color) {
    const double width = 1 / painter.device()->devicePixelRatioF();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, width));
    const double in = width / 2;
    painter.drawRoundedRect(shape.adjusted(in, in, -in, -in), radius - in, radius - in);
}

PaintedButton::PaintedButton(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void PaintedButton::focusInEvent(QFocusEvent* event) {
    // The window coming back changes nothing about how the focus got here.
    if (event->reason() != Qt::ActiveWindowFocusReason)
        isFocusShown_ = isShownFocus(event->reason());
    QAbstractButton::focusInEvent(event);
}

void PaintedButton::keyPressEvent(QKeyEvent* event) {
    isFocusShown_ = true;
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (isCheckable()) {
                event->ignore();  // Space changes a choice; Return is for the whole surface
                return;
            }
            if (!event->isAutoRepeat()) click();
            return;
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Up:
        case Qt::Key_Down:
            event->ignore();  // the group that the button belongs to moves among its buttons
            return;
        default:
            QAbstractButton::keyPressEvent(event);
    }
}

}  // namespace tendel

#include "ui/alert/AlertButton.h"

#include <QFontMetricsF>
#include <QPainter>

#include <algorithm>
#include <cmath>

#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"

namespace tendel {

AlertButton::AlertButton(QWidget* parent) : QAbstractButton(parent) {
    setFocusPolicy(Qt::NoFocus);
    setAttribute(Qt::WA_Hover);
    hide();
}

void AlertButton::set(Face face, const QString& name, std::string_view symbol,
                      const QColor& accent) {
    face_ = face;
    symbol_ = symbol;
    accent_ = accent;
    setText(name);
    setToolTip(face == Face::symbol ? name : QString());
    updateGeometry();
    update();
}

void AlertButton::setShown(double opacity, const QPainterPath& clip) {
    opacity_ = opacity;
    clip_ = clip;
    update();
}

QFont AlertButton::textFont() const {
    return Theme::instance().font(Theme::Type::body, accent_.isValid());
}

QSize AlertButton::sizeHint() const {
    constexpr int height = 32;
    if (face_ == Face::symbol) return {height, height};
    const double padding = accent_.isValid() ? 14 : 10;
    const double text = QFontMetricsF(textFont()).horizontalAdvance(QAbstractButton::text());
    return {static_cast<int>(std::ceil(text + 2 * padding)), height};
}

QColor AlertButton::background() const {
    const bool isPressed = isDown();
    const bool isHovered = underMouse();
    if (accent_.isValid()) {
        if (isPressed) return accent_.darker(115);
        return isHovered ? blended(Qt::white, accent_, 0.15) : accent_;
    }
    return QColor(255, 255, 255, isPressed ? 26 : isHovered ? 54 : 36);
}

void AlertButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(clip_);
    painter.setOpacity(opacity_);
    painter.setPen(Qt::NoPen);
    painter.setBrush(background());
    // As round as the alert's own corner, 14 further out, leaves room for.
    const double radius = std::min(14.0, height() / 2.0);
    painter.drawRoundedRect(QRectF(rect()), radius, radius);

    const QColor color = accent_.isValid() ? Theme::textOn(accent_) : QColor(Qt::white);
    if (face_ == Face::symbol) {
        constexpr double size = 18;
        const QRectF box((width() - size) / 2, (height() - size) / 2, size, size);
        icons::draw(painter, symbol_, box, color);
        return;
    }
    painter.setFont(textFont());
    painter.setPen(color);
    const QFontMetricsF metrics(textFont());
    const QString shown = metrics.elidedText(text(), Qt::ElideRight, width() - 8);
    // Centred by the height of the capitals: the space for descenders would push it up.
    const double baseline = (height() + metrics.capHeight()) / 2;
    painter.drawText(QPointF((width() - metrics.horizontalAdvance(shown)) / 2, baseline), shown);
}

}  // namespace tendel

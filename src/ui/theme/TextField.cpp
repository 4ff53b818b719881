#include "ui/theme/TextField.h"

#include <QPainter>

#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {
constexpr int fieldHeight = 32 + 2 * focusMargin;
}

TextField::TextField(const QString& name, QWidget* parent) : QLineEdit(parent) {
    setAccessibleName(name);
    setFrame(false);
    setAttribute(Qt::WA_MacShowFocusRect, false);
    setTextMargins(focusMargin + 8, 0, focusMargin + 8, 0);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    // The frame is painted beneath; the text's own background would hide it.
    QPalette clear = palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}

void TextField::setInvalid(bool isInvalid) {
    if (isInvalid == isInvalid_) return;
    isInvalid_ = isInvalid;
    update();
}

QSize TextField::sizeHint() const {
    return {200, fieldHeight};
}

QSize TextField::minimumSizeHint() const {
    return {48, fieldHeight};
}

void TextField::paintEvent(QPaintEvent* event) {
    const Theme& theme = Theme::instance();
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QRectF shape =
            QRectF(rect()).adjusted(focusMargin, focusMargin, -focusMargin, -focusMargin);
        painter.setPen(Qt::NoPen);
        painter.setBrush(theme.isDark() ? QColor(0, 0, 0, 56) : QColor(Qt::white));
        painter.drawRoundedRect(shape, Theme::controlRadius, Theme::controlRadius);
        QColor line = theme.color(Theme::Color::text);
        line.setAlphaF(0.22F);
        if (isInvalid_) line = theme.color(Theme::Color::missed);
        drawHairline(painter, shape, Theme::controlRadius, line);
        if (hasFocus()) drawFocusRing(painter, shape, Theme::controlRadius);
    }
    QLineEdit::paintEvent(event);
}

}  // namespace tendel

#include "ui/theme/Switch.h"

#include "ui/theme/Theme.h"

namespace tendel {

namespace {
constexpr QSize trackSize(38, 22);
constexpr int smallestTarget = 28;
}  // namespace

Switch::Switch(const QString& name, QWidget* parent) : PaintedButton(parent) {
    setCheckable(true);
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Switch::setKind(ReminderKind kind) {
    kind_ = kind;
    update();
}

QSize Switch::sizeHint() const {
    return {trackSize.width() + 2 * focusMargin,
            std::max(trackSize.height() + 2 * focusMargin, smallestTarget)};
}

void Switch::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);

    QRectF track({0, 0}, QSizeF(trackSize));
    track.moveCenter(QRectF(rect()).center());
    const double radius = track.height() / 2;
    QColor fill = theme.accent(kind_);
    if (!isChecked()) {
        fill = theme.color(Theme::Color::text);
        fill.setAlphaF(theme.isDark() ? 0.26F : 0.2F);
    }
    if (isHovered()) fill = isChecked() ? fill.lighter(theme.isDark() ? 108 : 112) : fill;
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(track, radius, radius);

    constexpr double inset = 2;
    const double knob = track.height() - 2 * inset;
    const bool isRight = isChecked() == (layoutDirection() == Qt::LeftToRight);
    const double x = isRight ? track.right() - inset - knob : track.left() + inset;
    const QRectF knobBox(x, track.top() + inset, knob, knob);
    painter.setBrush(QColor(0, 0, 0, 28));
    painter.drawEllipse(knobBox.translated(0, 0.75));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knobBox);
    if (showsFocus()) drawFocusRing(painter, track, radius);
}

}  // namespace tendel

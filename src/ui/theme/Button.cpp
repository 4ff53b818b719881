#include "ui/theme/Button.h"

#include <QFontMetrics>

#include "ui/theme/Icons.h"

namespace tendel {

namespace {
constexpr int symbolSize = 16;
constexpr int symbolGap = 6;
constexpr int iconButtonSize = 28;
}  // namespace

Button::Button(Role role, const QString& text, QWidget* parent)
    : PaintedButton(parent),
      role_(role),
      accent_(role == Role::destructive ? Theme::Color::missed : Theme::Color::workAccent) {
    setText(text);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void Button::setSymbol(std::string symbol) {
    symbol_ = std::move(symbol);
    updateGeometry();
    update();
}

void Button::setAccent(Theme::Color role) {
    if (role == accent_) return;
    accent_ = role;
    update();
}

QFont Button::textFont() const {
    return Theme::instance().font(Theme::Type::body, isFilled());
}

QSize Button::sizeHint() const {
    const int padding = role_ == Role::quiet ? 8 : 14;
    int width = QFontMetrics(textFont()).horizontalAdvance(text()) + 2 * padding;
    if (!symbol_.empty()) width += symbolSize + symbolGap - 2;
    const int height = role_ == Role::primary ? 32 : 28;
    return QSize(width, height) + 2 * QSize(focusMargin, focusMargin);
}

QColor Button::background() const {
    const Theme& theme = Theme::instance();
    const QColor text = theme.color(Theme::Color::text);
    const double press = isDown() ? 0.16 : isHovered() ? 0.08 : 0;
    if (isFilled()) {
        return blended(theme.isDark() ? Qt::white : Qt::black, theme.color(accent_), press);
    }
    QColor fill = text;
    fill.setAlphaF(static_cast<float>(press + (role_ == Role::normal ? 0.07 : 0)));
    return fill;
}

void Button::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);

    const QColor fill = background();
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(shape(), Theme::controlRadius, Theme::controlRadius);
    if (showsFocus()) drawFocusRing(painter, shape(), Theme::controlRadius);

    QColor ink = theme.color(Theme::Color::text);
    if (isFilled()) ink = Theme::textOn(fill);
    painter.setFont(textFont());
    painter.setPen(ink);
    QRectF box = shape();
    if (!symbol_.empty()) {
        const double textWidth = painter.fontMetrics().horizontalAdvance(text());
        double x = box.center().x() - (symbolSize + symbolGap + textWidth) / 2 - 1;
        icons::draw(painter, symbol_,
                    QRectF(x, box.center().y() - symbolSize / 2.0, symbolSize, symbolSize), ink);
        box.setLeft(x + symbolSize + symbolGap);
        painter.drawText(box, Qt::AlignVCenter | Qt::AlignLeft, text());
        return;
    }
    painter.drawText(box, Qt::AlignCenter, text());
}

IconButton::IconButton(std::string symbol, const QString& name, QWidget* parent)
    : PaintedButton(parent) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setMeaning(std::move(symbol), name);
}

void IconButton::setMeaning(std::string symbol, const QString& name) {
    symbol_ = std::move(symbol);
    setAccessibleName(name);
    setToolTip(name);
    update();
}

QSize IconButton::sizeHint() const {
    return QSize(iconButtonSize, iconButtonSize) + 2 * QSize(focusMargin, focusMargin);
}

void IconButton::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);
    const bool isActive = isHovered() || showsFocus();
    if (isHovered()) {
        QColor fill = theme.color(Theme::Color::text);
        fill.setAlphaF(isDown() ? 0.16F : 0.08F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawRoundedRect(shape(), Theme::controlRadius, Theme::controlRadius);
    }
    if (showsFocus()) drawFocusRing(painter, shape(), Theme::controlRadius);
    constexpr int size = 18;
    QRectF box(0, 0, size, size);
    box.moveCenter(shape().center());
    icons::draw(painter, symbol_, box,
                theme.color(isActive ? hoverColor_ : Theme::Color::secondary));
}

}  // namespace tendel

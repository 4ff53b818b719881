#include "ui/theme/SymbolCircle.h"

#include "ui/theme/Icons.h"

namespace tendel {

void drawSymbolCircle(QPainter& painter, std::string_view symbol, const QRectF& circle,
                      const QColor& color) {
    QColor tint = color;
    tint.setAlphaF(Theme::instance().isDark() ? 0.22F : 0.13F);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(tint);
    painter.drawEllipse(circle);
    const double inset = circle.width() * 0.225;
    icons::draw(painter, symbol, circle.adjusted(inset, inset, -inset, -inset), color);
}

SymbolCircle::SymbolCircle(int size, std::string symbol, Theme::Color color, QWidget* parent)
    : QWidget(parent), symbol_(std::move(symbol)), color_(color) {
    setFixedSize(size, size);
    setAttribute(Qt::WA_TransparentForMouseEvents);
}

void SymbolCircle::setSymbol(std::string symbol, Theme::Color color) {
    symbol_ = std::move(symbol);
    color_ = color;
    update();
}

void SymbolCircle::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    drawSymbolCircle(painter, symbol_, rect(), Theme::instance().color(color_));
}

}  // namespace tendel

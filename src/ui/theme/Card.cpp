#include "ui/theme/Card.h"

#include <QPainter>

#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

Card::Card(QWidget* parent) : QWidget(parent) {
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void Card::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(Theme::Color::surface));
    painter.drawRoundedRect(rect(), Theme::cardRadius, Theme::cardRadius);
    drawHairline(painter, rect(), Theme::cardRadius, theme.color(Theme::Color::hairline));
}

}  // namespace tendel

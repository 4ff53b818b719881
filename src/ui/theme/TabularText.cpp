#include "ui/theme/TabularText.h"

#include <QFontMetricsF>

#include <algorithm>

namespace tendel {

namespace {

double digitCell(const QFontMetricsF& metrics) {
    double widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

double advance(const QFontMetricsF& metrics, double cell, QChar character) {
    return character.isDigit() ? cell : metrics.horizontalAdvance(character);
}

}  // namespace

double tabularWidth(const QFont& font, const QString& text) {
    const QFontMetricsF metrics(font);
    const double cell = digitCell(metrics);
    double width = 0;
    for (const QChar character : text)
        width += advance(metrics, cell, character);
    return width;
}

void drawTabular(QPainter& painter, const QRectF& box, Qt::Alignment alignment,
                 const QString& text) {
    const QFontMetricsF metrics(painter.font());
    const double cell = digitCell(metrics);
    const double spare = box.width() - tabularWidth(painter.font(), text);
    double x = box.left();
    if (alignment & Qt::AlignRight) x += spare;
    if (alignment & Qt::AlignHCenter) x += spare / 2;
    double baseline = box.top() + metrics.ascent();
    if (alignment & Qt::AlignBottom) baseline = box.bottom() - metrics.descent();
    if (alignment & Qt::AlignVCenter) baseline = box.center().y() + metrics.capHeight() / 2;
    for (const QChar character : text) {
        const double width = advance(metrics, cell, character);
        const double inset = (width - metrics.horizontalAdvance(character)) / 2;
        painter.drawText(QPointF(x + inset, baseline), QString(character));
        x += width;
    }
}

}  // namespace tendel

#pragma once

#include <QFont>
#include <QPainter>
#include <QRectF>
#include <QString>

namespace tendel {

// Text in which every digit takes the same width, so that a running time does not tremble: many
// interface fonts have proportional digits. Digits stand centred in cells of the widest one.
double tabularWidth(const QFont& font, const QString& text);
// Draws with the painter's font and pen; of `alignment` left, right, centre and vertical ones
// count.
void drawTabular(QPainter& painter, const QRectF& box, Qt::Alignment alignment,
                 const QString& text);

}  // namespace tendel

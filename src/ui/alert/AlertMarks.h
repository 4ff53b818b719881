#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>

// What the alert and the pill draw alike, on their black.
namespace tendel {

// The colour of what is said beside the white main text.
inline const QColor secondaryOnBlack(0xA8, 0xA8, 0xAD);

// A ring inside `box`, full at 1, of which `part` (0–1) from the top on is in `color`.
void drawRing(QPainter& painter, const QRectF& box, double width, const QColor& color, double part);
// A check mark that fills `box`, of which the first `part` (0–1) of the stroke is drawn.
void drawCheckMark(QPainter& painter, const QRectF& box, double width, double part);

}  // namespace tendel

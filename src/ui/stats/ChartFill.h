#pragma once

#include <QPainter>
#include <QRectF>

#include "ui/theme/Theme.h"

namespace tendel {

// What a bar stands for. Each has a pattern besides its colour: done is solid, missed hatched,
// snoozed dotted, focus an outline.
enum class ChartFill { done, missed, snoozed, focus };

Theme::Color colorOf(ChartFill fill);
// A bar in its pattern. `opacity` (0–1) is for what only hints at a bar.
void drawBar(QPainter& painter, const QRectF& bar, ChartFill fill, double opacity = 1);

}  // namespace tendel

#pragma once

#include <QPainter>

#include "reminders/DayTimeline.h"

namespace tendel {

// The sign of a state on the day's line: each has a shape of its own, so that none is told by its
// colour alone. As large as the layout's sign size.
void drawSign(QPainter& painter, DayTimeline::State state, QPointF centre, const QColor& color);

}  // namespace tendel

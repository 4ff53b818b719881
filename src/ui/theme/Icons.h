#pragma once

#include <QColor>
#include <QIcon>
#include <QPainter>
#include <QPainterPath>
#include <QRectF>
#include <QStringList>

#include <string_view>

#include "model/ExerciseAnimation.h"

// Symbols by the names that reminders store ("eye", "drop", "bell", …), drawn as outlines from the
// icon font. Without the font simple shapes stand in. Main thread only.
namespace tendel::icons {

// The outline of a symbol, scaled to `box` and optically centred in it. Unknown names answer the
// bell.
QPainterPath path(std::string_view symbol, const QRectF& box);
// Whether a symbol of that name exists.
bool isKnown(std::string_view symbol);
// The symbol that stands for an exercise.
std::string_view symbolOf(ExerciseAnimation animation);

void draw(QPainter& painter, std::string_view symbol, const QRectF& box, const QColor& color);
QIcon icon(std::string_view symbol, const QColor& color, int size = 20);

// The symbols that a person can choose for a reminder, in the order in which they are offered.
const QStringList& choices();
// What a person or a screen reader calls a symbol ("Glass of water"); the name itself when it has
// no other.
QString spokenName(std::string_view symbol);

}  // namespace tendel::icons

#pragma once

#include <QWidget>

#include <string>

#include "ui/theme/Theme.h"

namespace tendel {

// A symbol in a circle of its own colour, much lighter.
void drawSymbolCircle(QPainter& painter, std::string_view symbol, const QRectF& circle,
                      const QColor& color);

// The same as a picture on a surface. Nothing for the keyboard or the pointer.
class SymbolCircle : public QWidget {
    Q_OBJECT
public:
    SymbolCircle(int size, std::string symbol, Theme::Color color, QWidget* parent = nullptr);
    void setSymbol(std::string symbol, Theme::Color color);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string symbol_;
    Theme::Color color_;
};

}  // namespace tendel

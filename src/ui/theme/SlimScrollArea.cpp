#include "ui/theme/SlimScrollArea.h"

#include <QKeyEvent>
#include <QPainter>
#include <QScrollBar>
#include <QStyle>
#include <QStyleOptionSlider>

#include "ui/theme/Theme.h"

namespace tendel {

namespace {

class SlimScrollBar : public QScrollBar {
public:
    explicit SlimScrollBar(QWidget* parent) : QScrollBar(Qt::Vertical, parent) {
        setAttribute(Qt::WA_Hover);
    }

    QSize sizeHint() const override {
        return {SlimScrollArea::barWidth, 3 * SlimScrollArea::barWidth};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        if (minimum() == maximum()) return;
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        // In proportion to the whole bar; the style's own ends would leave room for arrows.
        const double visible = double(pageStep()) / (maximum() - minimum() + pageStep());
        const double length = std::max(height() * visible, 32.0);
        const double top =
            (height() - length) * (value() - minimum()) / double(maximum() - minimum());
        const bool isActive = underMouse() || isSliderDown();
        const double thickness = isActive ? 7 : 5;
        QColor ink = Theme::instance().color(Theme::Color::text);
        ink.setAlphaF(isActive ? 0.45F : 0.25F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(ink);
        painter.drawRoundedRect(QRectF(width() - thickness - 2, top + 2, thickness, length - 4),
                                thickness / 2, thickness / 2);
    }
};

}  // namespace

SlimScrollArea::SlimScrollArea(QWidget* parent) : QScrollArea(parent) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBar(new SlimScrollBar(this));
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    viewport()->setAutoFillBackground(false);
}

QSize SlimScrollArea::sizeHint() const {
    if (!widget()) return QScrollArea::sizeHint();
    return widget()->sizeHint() + QSize(barWidth, 0);
}

void SlimScrollArea::keyPressEvent(QKeyEvent* event) {
    event->ignore();
}

}  // namespace tendel

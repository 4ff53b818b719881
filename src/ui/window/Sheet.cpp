#include "ui/window/Sheet.h"

#include <QApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>

#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {
constexpr int smallestGap = 24;  // between the panel and the window's edge
}

Sheet::Sheet(QWidget* host, int width) : QWidget(host), panel_(new QWidget(this)), width_(width) {
    host->installEventFilter(this);
    // Content that grows or shrinks moves the panel's edges.
    panel_->installEventFilter(this);
}

void Sheet::open(QWidget* first) {
    focusAfter_ = window()->focusWidget();
    place();
    show();
    raise();
    first->setFocus(Qt::OtherFocusReason);
}

void Sheet::closeSheet() {
    hide();
    parentWidget()->removeEventFilter(this);
    if (focusAfter_ && focusAfter_->isVisible()) focusAfter_->setFocus(Qt::OtherFocusReason);
    Q_EMIT closed();
    deleteLater();
}

void Sheet::place() {
    const QSize host = parentWidget()->size();
    resize(host);
    const int wanted =
        panel_->hasHeightForWidth() ? panel_->heightForWidth(width_) : panel_->sizeHint().height();
    const int height = std::min(wanted, host.height() - 2 * smallestGap);
    panel_->setGeometry((host.width() - width_) / 2, (host.height() - height) / 2, width_, height);
    update();
}

void Sheet::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            Q_EMIT escapePressed();
            return;
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (!event->isAutoRepeat()) Q_EMIT returnPressed();
            return;
        default:
            event->accept();  // no key reaches the window beneath
    }
}

bool Sheet::focusNextPrevChild(bool isNext) {
    QWidget* const from = window()->focusWidget() ? window()->focusWidget() : this;
    for (QWidget* next = from;;) {
        next = isNext ? next->nextInFocusChain() : next->previousInFocusChain();
        if (next == from) return true;
        if (isAncestorOf(next) && next->isVisible() && next->isEnabled() &&
            (next->focusPolicy() & Qt::TabFocus) && !next->focusProxy()) {
            next->setFocus(isNext ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
}

bool Sheet::eventFilter(QObject* watched, QEvent* event) {
    const bool isHostResized = watched == parentWidget() && event->type() == QEvent::Resize;
    const bool isContentChanged = watched == panel_ && event->type() == QEvent::LayoutRequest;
    if (isHostResized || isContentChanged) place();
    return QWidget::eventFilter(watched, event);
}

void Sheet::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(rect(), QColor(0, 0, 0, theme.isDark() ? 120 : 72));
    painter.setPen(Qt::NoPen);
    const QRectF panel = panel_->geometry();
    for (int spread = 20; spread > 0; spread -= 2) {
        painter.setBrush(QColor(0, 0, 0, 4));
        painter.drawRoundedRect(panel.adjusted(-spread, -spread + 4, spread, spread + 4),
                                Theme::panelRadius + spread, Theme::panelRadius + spread);
    }
    painter.setBrush(theme.isDark() ? theme.color(Theme::Color::surface)
                                    : theme.color(Theme::Color::window));
    painter.drawRoundedRect(panel, Theme::panelRadius, Theme::panelRadius);
    drawHairline(painter, panel, Theme::panelRadius, theme.color(Theme::Color::hairline));
}

void Sheet::wheelEvent(QWheelEvent* event) {
    event->accept();
}

}  // namespace tendel

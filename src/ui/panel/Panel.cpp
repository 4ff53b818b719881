#include "ui/panel/Panel.h"

#include <QCursor>

#include <utility>

#include "ui/panel/PanelWindow.h"

namespace tendel {

namespace {

// A press on the icon may take the keyboard before the tray says what was pressed: who closes the
// panel in this way does not want it again.
constexpr Duration pressTime = std::chrono::milliseconds(400);
constexpr int iconSize = 48;

}  // namespace

Panel::~Panel() {
    delete window_;
}

void Panel::openAt(QPoint icon) {
    close();
    icon_ = icon;
    window_ = new PanelWindow(app_);
    window_->onLeft = [this] { leftAt_ = app_.platform.loop.monotonicNow(); };
    window_->openAt(icon.isNull() ? QCursor::pos() : icon);
}

void Panel::toggleAt(QPoint icon) {
    const auto leftAt = std::exchange(leftAt_, {});
    if (isOpen()) return close();
    const bool isSameIcon = (icon - icon_).manhattanLength() < iconSize;
    if (leftAt && isSameIcon && app_.platform.loop.monotonicNow() - *leftAt < pressTime) return;
    openAt(icon);
}

bool Panel::isOpen() const {
    return window_ && window_->isVisible();
}

void Panel::close() {
    // Deletes itself, though only later.
    if (PanelWindow* window = std::exchange(window_, nullptr)) window->close();
}

}  // namespace tendel

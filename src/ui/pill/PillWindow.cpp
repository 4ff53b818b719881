#include "ui/pill/PillWindow.h"

#include <QRectF>

namespace tendel {

namespace {

using Layer = OverlayStack::Layer;

}  // namespace

PillWindow::PillWindow(NotchLiveController& live, EventLoop& loop, OverlayStack& stack)
    : view_(live, loop), stack_(stack) {
    stack_.add(view_, Layer::pill);
    view_.setWindowTitle(QStringLiteral("Tendel live pill"));
    view_.onOutlineChange = [this] { cutOut(); };
    stack_.onChange = [this] { view_.setBelowAlert(stack_.isAbove(Layer::alert, Layer::pill)); };
}

PillWindow::~PillWindow() {
    stack_.onChange = [] {};
    stack_.remove(Layer::pill);
}

void PillWindow::show(const Rect& frame, const NotchLiveGeometry& geometry) {
    view_.setGeometry(QRectF(frame.x, frame.y, frame.width, frame.height).toRect());
    view_.setMeasures(geometry);
    cutOut();  // the screen may have another scale
    stack_.show(Layer::pill);
}

void PillWindow::setLiveArea(const Rect& area) {
    liveArea_ = area;
    cutOut();
}

void PillWindow::hide() {
    stack_.hide(Layer::pill);
}

void PillWindow::cutOut() {
    const QPoint corner = view_.pos();
    setWindowOutline(view_, view_.outline(),
                     Rect{liveArea_.x - corner.x(), liveArea_.y - corner.y(), liveArea_.width,
                          liveArea_.height});
}

}  // namespace tendel

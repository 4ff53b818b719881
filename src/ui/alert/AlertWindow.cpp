#include "ui/alert/AlertWindow.h"

#include <QRectF>

namespace tendel {

AlertWindow::AlertWindow(NotchAlertModel& model, const NotchAlertActions& actions, EventLoop& loop,
                         OverlayStack& stack)
    : view_(model, actions, loop), stack_(stack) {
    stack_.add(view_, OverlayStack::Layer::alert);
    view_.setWindowTitle(QStringLiteral("Tendel alert"));
    view_.onOutlineChange = [this](const AlertOutline& outline) {
        setWindowOutline(view_, outline);
    };
}

AlertWindow::~AlertWindow() {
    stack_.remove(OverlayStack::Layer::alert);
}

void AlertWindow::show(const Rect& frame, const NotchAlertGeometry& geometry) {
    view_.setGeometry(QRectF(frame.x, frame.y, frame.width, frame.height).toRect());
    view_.setMeasures(geometry);
    setWindowOutline(view_, view_.outline());  // the screen may have another scale
    stack_.show(OverlayStack::Layer::alert);
}

void AlertWindow::hide() {
    stack_.hide(OverlayStack::Layer::alert);
}

}  // namespace tendel

#include "ui/alert/AlertWindow.h"

#include <QRectF>
#include <QWindow>

#include "ui/alert/AlertShape.h"

namespace tendel {

AlertWindow::AlertWindow(NotchAlertModel& model, const NotchAlertActions& actions, EventLoop& loop)
    : view_(model, actions, loop) {
    // A window that the window manager leaves alone: only so it can stand above full-screen ones.
    view_.setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint |
                         Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                         Qt::NoDropShadowWindowHint);
    view_.setAttribute(Qt::WA_ShowWithoutActivating);
    view_.setAttribute(Qt::WA_X11DoNotAcceptFocus);
    view_.setWindowTitle(QStringLiteral("Tendel alert"));
    view_.onOutlineChange = [this](const AlertOutline& outline) { setShape(outline); };
}

void AlertWindow::show(const Rect& frame, const NotchAlertGeometry& geometry) {
    view_.winId();  // there must be a window to shape before it is mapped
    view_.setGeometry(QRectF(frame.x, frame.y, frame.width, frame.height).toRect());
    view_.setMeasures(geometry);
    setShape(view_.outline());  // the screen may have another scale
    if (!view_.isVisible()) {
        view_.show();
        stacking_ = std::make_unique<StackingWatch>([this] { view_.raise(); });
    }
    view_.raise();
}

void AlertWindow::hide() {
    stacking_.reset();
    view_.hide();
}

void AlertWindow::setShape(const AlertOutline& outline) {
    const QWindow* window = view_.windowHandle();
    if (!window) return;
    const double scale = window->devicePixelRatio();
    const AlertOutline device{outline.width * scale, outline.height * scale,
                              outline.topRadius * scale, outline.bottomRadius * scale};
    setWindowShape(*window, alertRegion(device, view_.width() * scale / 2));
}

}  // namespace tendel

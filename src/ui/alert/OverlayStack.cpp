#include "ui/alert/OverlayStack.h"

#include <QWindow>

#include <algorithm>

#include "ui/alert/AlertShape.h"

namespace tendel {

void OverlayStack::add(QWidget& window, Layer layer) {
    at(layer) = &window;
    // A window that the window manager leaves alone: only so it can stand above full-screen ones.
    window.setWindowFlags(Qt::ToolTip | Qt::FramelessWindowHint | Qt::BypassWindowManagerHint |
                          Qt::WindowStaysOnTopHint | Qt::WindowDoesNotAcceptFocus |
                          Qt::NoDropShadowWindowHint);
    window.setAttribute(Qt::WA_ShowWithoutActivating);
    window.setAttribute(Qt::WA_X11DoNotAcceptFocus);
    window.setAttribute(Qt::WA_TranslucentBackground);
    // It is never the active one, but its tooltips are wanted.
    window.setAttribute(Qt::WA_AlwaysShowToolTips);
    window.setFocusPolicy(Qt::NoFocus);
    window.winId();  // there must be a window to shape before it is mapped
}

void OverlayStack::remove(Layer layer) {
    if (at(layer)) hide(layer);
    at(layer) = nullptr;
}

void OverlayStack::show(Layer layer) {
    place(layer);
    at(layer)->show();
    if (!watch_) watch_ = std::make_unique<StackingWatch>([this] { restack(); });
    onChange();
}

void OverlayStack::hide(Layer layer) {
    at(layer)->hide();
    if (std::ranges::none_of(windows_, [](QWidget* w) { return w && w->isVisible(); }))
        watch_.reset();
    onChange();
}

bool OverlayStack::isShown(Layer layer) const {
    return at(layer) && at(layer)->isVisible();
}

bool OverlayStack::isAbove(Layer upper, Layer lower) const {
    return isShown(upper) && isShown(lower) &&
           at(upper)->geometry().intersects(at(lower)->geometry());
}

void OverlayStack::place(Layer layer) {
    if (layer == Layer::pill && isShown(Layer::alert))
        stackBelow(*at(layer)->windowHandle(), *at(Layer::alert)->windowHandle());
    else
        at(layer)->raise();
}

void OverlayStack::restack() {
    for (const Layer layer : {Layer::alert, Layer::pill})
        if (isShown(layer)) place(layer);
}

void setWindowOutline(const QWidget& widget, const AlertOutline& outline,
                      const std::optional<Rect>& input) {
    const QWindow* window = widget.windowHandle();
    if (!window) return;
    const double scale = window->devicePixelRatio();
    const AlertOutline device{outline.width * scale, outline.height * scale,
                              outline.topRadius * scale, outline.bottomRadius * scale};
    const QRegion drawn = alertRegion(device, widget.width() * scale / 2);
    if (!input) return setWindowShape(*window, drawn, drawn);
    const QRectF live(input->x * scale, input->y * scale, input->width * scale,
                      input->height * scale);
    setWindowShape(*window, drawn, drawn.intersected(live.toAlignedRect()));
}

}  // namespace tendel

#include "ui/alert/X11Overlay.h"

#include <QGuiApplication>

#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

#include <xcb/shape.h>
#include <xcb/xcb.h>

namespace tendel {

namespace {

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

xcb_window_t idOf(const QWindow& window) {
    return static_cast<xcb_window_t>(window.winId());
}

void setShape(const QWindow& window, xcb_shape_kind_t kind, const QRegion& region) {
    std::vector<xcb_rectangle_t> rectangles;
    for (const QRect& r : region)
        rectangles.push_back({static_cast<std::int16_t>(r.x()), static_cast<std::int16_t>(r.y()),
                              static_cast<std::uint16_t>(r.width()),
                              static_cast<std::uint16_t>(r.height())});
    xcb_shape_rectangles(connection(), XCB_SHAPE_SO_SET, kind, XCB_CLIP_ORDERING_UNSORTED,
                         idOf(window), 0, 0, static_cast<std::uint32_t>(rectangles.size()),
                         rectangles.data());
}

}  // namespace

void setWindowShape(const QWindow& window, const QRegion& drawn, const QRegion& input) {
    if (!connection() || !window.handle()) return;
    // Of the two, X servers inside a Wayland session know the input shape alone.
    setShape(window, XCB_SHAPE_SK_BOUNDING, drawn);
    setShape(window, XCB_SHAPE_SK_INPUT, input);
}

void stackBelow(const QWindow& window, const QWindow& other) {
    if (!connection() || !window.handle() || !other.handle()) return;
    const std::array<std::uint32_t, 2> values{idOf(other), XCB_STACK_MODE_BELOW};
    xcb_configure_window(connection(), idOf(window),
                         XCB_CONFIG_WINDOW_SIBLING | XCB_CONFIG_WINDOW_STACK_MODE, values.data());
}

StackingWatch::StackingWatch(std::function<void()> onRestacked)
    : onRestacked_(std::move(onRestacked)) {
    xcb_connection_t* server = connection();
    if (!server) return;
    constexpr std::string_view name = "_NET_CLIENT_LIST_STACKING";
    const auto cookie =
        xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(server, cookie, nullptr), std::free);
    if (reply) stackingAtom_ = reply->atom;
    qGuiApp->installNativeEventFilter(this);
}

StackingWatch::~StackingWatch() {
    if (qGuiApp) qGuiApp->removeNativeEventFilter(this);
}

bool StackingWatch::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY) return false;
    const auto* property = static_cast<const xcb_property_notify_event_t*>(message);
    if (stackingAtom_ && property->atom == stackingAtom_) onRestacked_();
    return false;
}

}  // namespace tendel

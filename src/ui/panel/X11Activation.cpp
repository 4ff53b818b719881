#include "ui/panel/X11Activation.h"

#include <QGuiApplication>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include <xcb/xcb.h>

namespace tendel {

namespace {

template <class Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, std::free};
}

xcb_atom_t atom(xcb_connection_t* server, std::string_view name) {
    const auto reply = owned(xcb_intern_atom_reply(
        server, xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data()),
        nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

void tellWindowManager(xcb_connection_t* server, const QWindow& window, std::string_view what,
                       const std::array<std::uint32_t, 5>& values) {
    xcb_client_message_event_t message{};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = static_cast<xcb_window_t>(window.winId());
    message.type = atom(server, what);
    std::ranges::copy(values, message.data.data32);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server)).data->root;
    xcb_send_event(server, 0, root,
                   XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                   reinterpret_cast<const char*>(&message));
}

}  // namespace

// The messages and their values are those of the Extended Window Manager Hints.
void activateForUser(QWindow& window) {
    window.raise();
    xcb_connection_t* server = connection();
    if (!server) return window.requestActivate();
    constexpr std::uint32_t add = 1;
    tellWindowManager(server, window, "_NET_WM_STATE",
                      {add, atom(server, "_NET_WM_STATE_SKIP_TASKBAR"),
                       atom(server, "_NET_WM_STATE_SKIP_PAGER")});
    constexpr std::uint32_t fromUser = 2;  // by way of another program
    tellWindowManager(server, window, "_NET_ACTIVE_WINDOW", {fromUser, XCB_CURRENT_TIME});
    xcb_flush(server);
}

}  // namespace tendel

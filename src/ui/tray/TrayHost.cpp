#include "ui/tray/TrayHost.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QGuiApplication>
#include <QTimer>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include <xcb/xcb.h>

namespace tendel {

namespace {

const QString watcherService = QStringLiteral("org.kde.StatusNotifierWatcher");

xcb_connection_t* connection() {
    const auto* x11 = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    return x11 ? x11->connection() : nullptr;
}

template <class Reply>
std::unique_ptr<Reply, decltype(&std::free)> owned(Reply* reply) {
    return {reply, std::free};
}

xcb_atom_t atom(xcb_connection_t* server, std::string_view name) {
    const auto cookie =
        xcb_intern_atom(server, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const auto reply = owned(xcb_intern_atom_reply(server, cookie, nullptr));
    return reply ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

}  // namespace

TrayHost::TrayHost() {
    // The names are those of the freedesktop.org System Tray Protocol.
    if (xcb_connection_t* server = connection()) {
        managerAtom_ = atom(server, "MANAGER");
        trayAtom_ = atom(server, "_NET_SYSTEM_TRAY_S0");
    }
}

TrayHost::~TrayHost() {
    if (qGuiApp) qGuiApp->removeNativeEventFilter(this);
}

void TrayHost::find(std::function<void()> onFound) {
    onFound_ = std::move(onFound);
    if (isThere()) return found();
    QObject::connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, &watcher_,
                     [this] { found(); });
    watcher_.setConnection(QDBusConnection::sessionBus());
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForRegistration);
    watcher_.addWatchedService(watcherService);
    qGuiApp->installNativeEventFilter(this);
}

bool TrayHost::isThere() const {
    const QDBusConnection bus = QDBusConnection::sessionBus();
    if (bus.isConnected() && bus.interface()->isServiceRegistered(watcherService)) return true;
    xcb_connection_t* server = connection();
    if (!server || trayAtom_ == XCB_ATOM_NONE) return false;
    const auto owner = owned(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, trayAtom_), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

void TrayHost::found() {
    if (qGuiApp) qGuiApp->removeNativeEventFilter(this);
    watcher_.setWatchedServices({});
    if (const auto tell = std::exchange(onFound_, nullptr)) tell();
}

bool TrayHost::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
    const auto* client = static_cast<const xcb_client_message_event_t*>(message);
    if (client->type == managerAtom_ && client->data.data32[1] == trayAtom_)
        // Qt is still to take the message itself.
        QTimer::singleShot(0, &watcher_, [this] { found(); });
    return false;
}

}  // namespace tendel

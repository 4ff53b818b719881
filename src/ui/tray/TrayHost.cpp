#include "ui/tray/TrayHost.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QGuiApplication>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <utility>

#include <xcb/xcb.h>

namespace tendel {

namespace {

const QString watcherName = QStringLiteral("org.kde.StatusNotifierWatcher");
const QString watcherPath = QStringLiteral("/StatusNotifierWatcher");

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

void TrayHost::watch() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    watcher_.setConnection(bus);
    watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
    watcher_.addWatchedService(watcherName);
    connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &TrayHost::watcherDidChange);
    // From whomever: with a name in its place Qt would ask who has it, and wait for the answer.
    bus.connect({}, watcherPath, watcherName, QStringLiteral("StatusNotifierHostRegistered"), this,
                SLOT(watcherDidChange()));
    bus.connect({}, watcherPath, watcherName, QStringLiteral("StatusNotifierHostUnregistered"),
                this, SLOT(lookForHost()));
    // The end of the bus itself; nobody is left then to tell that the host went.
    bus.connect({}, QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                SLOT(lookForHost()));
    qGuiApp->installNativeEventFilter(this);
    watcherDidChange();
}

void TrayHost::watcherDidChange() {
    onWatcher();
    lookForHost();
}

void TrayHost::lookForHost() {
    auto get = QDBusMessage::createMethodCall(watcherName, watcherPath,
                                              QStringLiteral("org.freedesktop.DBus.Properties"),
                                              QStringLiteral("Get"));
    get << watcherName << QStringLiteral("IsStatusNotifierHostRegistered");
    get.setAutoStartService(false);
    auto* call = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(get), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call, question = ++question_] {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *call;
        if (question != question_) return;
        if (!reply.isError() && reply.value().variant().toBool())
            set(Tray::statusNotifier);
        else
            set(hasXEmbedTray() ? Tray::xEmbed : Tray::none);
    });
}

bool TrayHost::hasXEmbedTray() const {
    xcb_connection_t* server = connection();
    if (!server || trayAtom_ == XCB_ATOM_NONE) return false;
    const auto owner = owned(
        xcb_get_selection_owner_reply(server, xcb_get_selection_owner(server, trayAtom_), nullptr));
    return owner && owner->owner != XCB_WINDOW_NONE;
}

void TrayHost::set(Tray tray) {
    if (tray == tray_) return;
    tray_ = tray;
    onChange(tray);
}

bool TrayHost::nativeEventFilter(const QByteArray& eventType, void* message, qintptr*) {
    if (tray_ == Tray::statusNotifier || eventType != "xcb_generic_event_t") return false;
    const auto* event = static_cast<const xcb_generic_event_t*>(message);
    if ((event->response_type & 0x7f) != XCB_CLIENT_MESSAGE) return false;
    const auto* client = static_cast<const xcb_client_message_event_t*>(message);
    if (client->type == managerAtom_ && client->data.data32[1] == trayAtom_)
        // Qt is still to take the message itself.
        QMetaObject::invokeMethod(this, &TrayHost::lookForHost, Qt::QueuedConnection);
    return false;
}

}  // namespace tendel

#include "platform/linux/bus/BusConnection.h"

#include <sys/stat.h>

#include <QFileInfo>

#include "base/Log.h"
#include "platform/linux/bus/BusSignal.h"

namespace tendel {

namespace {

// A bus makes its socket first and listens then.
constexpr Duration untilItListens = std::chrono::milliseconds(10);

}  // namespace

BusConnection::BusConnection(EventLoop& loop, BusAddress address)
    : address_(std::move(address)),
      name_(QStringLiteral("tendel-%1").arg(reinterpret_cast<quintptr>(this), 0, 16)),
      probe_(loop),
      next_(loop) {
    if (!address_.text.isEmpty()) attempt();
}

BusConnection::~BusConnection() {
    bus_.reset();
    QDBusConnection::disconnectFromBus(name_);
}

void BusConnection::attempt() {
    triedSocket_ = socketIdentity();
    probe_.ask(address_, [this](bool answers) {
        if (!answers || !open()) return retryLater();
        backoff_.reset();
        next_.stop();
        socketFolder_.reset();
        connected.emit();
    });
}

bool BusConnection::open() {
    auto bus = QDBusConnection::connectToBus(address_.text, name_);
    auto disconnected = std::make_unique<BusSignal>([this](const QDBusMessage&) {
        // Not from within the connection's own message.
        next_.start(Duration::zero(), [this] { lose(); });
    });
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                disconnected.get(), SLOT(receive(QDBusMessage)));
    // Asked after listening, so that no end is missed.
    if (!bus.isConnected()) {
        QDBusConnection::disconnectFromBus(name_);
        return false;
    }
    bus_ = bus;
    disconnected_ = std::move(disconnected);
    return true;
}

void BusConnection::lose() {
    log(LogLevel::debug, "bus", "the bus at " + address_.text.toStdString() + " went away");
    bus_.reset();
    disconnected_.reset();
    lost.emit();
    QDBusConnection::disconnectFromBus(name_);
    retryLater();
}

void BusConnection::retryLater() {
    next_.start(backoff_.next(), [this] { attempt(); });
    if (!address_.hasSocketFile()) return;
    if (socketFolder_ && !socketFolder_->directories().isEmpty()) return;
    const QFileInfo socket(QString::fromUtf8(address_.socket));
    socketFolder_ = std::make_unique<QFileSystemWatcher>(QStringList{socket.path()});
    const auto lookAgain = [this] {
        const auto socketNow = socketIdentity();
        if (!socketNow || socketNow == triedSocket_) return;
        backoff_.reset();
        next_.start(untilItListens, [this] { attempt(); });
    };
    QObject::connect(socketFolder_.get(), &QFileSystemWatcher::directoryChanged,
                     socketFolder_.get(), lookAgain);
    // It may have come while nobody watched.
    lookAgain();
}

std::optional<BusConnection::SocketIdentity> BusConnection::socketIdentity() const {
    struct stat file {};
    if (!address_.hasSocketFile() || ::stat(address_.socket.constData(), &file) != 0)
        return std::nullopt;
    return SocketIdentity{file.st_ino, file.st_ctim.tv_sec * 1'000'000'000L + file.st_ctim.tv_nsec};
}

}  // namespace tendel

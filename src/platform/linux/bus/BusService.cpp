#include "platform/linux/bus/BusService.h"

#include <QDBusArgument>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>

#include <limits>

#include "platform/linux/bus/BusSignal.h"

namespace tendel {

using namespace Qt::StringLiterals;

namespace {

// A service that hangs is forgotten when it ends, not after a time: what it says then still holds.
constexpr int noTimeLimit = std::numeric_limits<int>::max();
constexpr int shortWait = 100;  // milliseconds

void answerLater(const QDBusConnection& bus, const QDBusMessage& call, QObject* context,
                 BusService::Handler answered) {
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(call, noTimeLimit), context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, context,
                     [watcher, answered = std::move(answered)] {
                         watcher->deleteLater();
                         answered(watcher->reply());
                     });
}

}  // namespace

BusService::BusService(BusConnection& connection, QString name)
    : connection_(connection), name_(std::move(name)) {
    connected_ = connection_.connected.connect([this] { connectionMade(); });
    lost_ = connection_.lost.connect([this] {
        onBus_.reset();
        takeOwner(QString());
    });
    if (connection_.bus()) connectionMade();
}

void BusService::connectionMade() {
    onBus_ = std::make_unique<QObject>();
    QDBusConnection bus = *connection_.bus();
    const QString busName = u"org.freedesktop.DBus"_s;
    const QString busPath = u"/org/freedesktop/DBus"_s;
    const auto wasTold = std::make_shared<bool>(false);
    auto* ownerChanged = new BusSignal(
        [this, wasTold](const QDBusMessage& signal) {
            if (signal.signature() != u"sss") return;
            *wasTold = true;
            takeOwner(signal.arguments().at(2).toString());
        },
        onBus_.get());
    bus.connect(busName, busPath, busName, u"NameOwnerChanged"_s, {name_}, u"sss"_s, ownerChanged,
                SLOT(receive(QDBusMessage)));
    auto ask = QDBusMessage::createMethodCall(busName, busPath, busName, u"GetNameOwner"_s);
    ask << name_;
    answerLater(bus, ask, onBus_.get(), [this, wasTold](const QDBusMessage& reply) {
        // What the signal said is newer.
        if (!*wasTold) takeOwner(firstArgument<QString>(reply).value_or(QString()));
    });
}

void BusService::takeOwner(const QString& owner) {
    if (owner == owner_) return;
    owner_ = owner;
    hangs_ = false;
    renew();
}

void BusService::renew() {
    onOwner_ = std::make_unique<QObject>();
    changed.emit();
}

void BusService::call(const BusObject& object, const QString& method, const QVariantList& arguments,
                      Handler answered) {
    if (!isRunning()) return;
    auto call = QDBusMessage::createMethodCall(owner_, object.path, object.interfaceName, method);
    call.setArguments(arguments);
    answerLater(*connection_.bus(), call, onOwner_.get(), std::move(answered));
}

void BusService::listen(const BusObject& object, const QString& signal, Handler received) {
    subscribe(object, signal, {}, std::move(received));
}

void BusService::subscribe(const BusObject& object, const QString& signal,
                           const QStringList& firstArguments, Handler received) {
    if (!isRunning()) return;
    // The sender by its unique name: by the other, Qt would wait for the bus to say who that is.
    QDBusConnection(*connection_.bus())
        .connect(owner_, object.path, object.interfaceName, signal, firstArguments, QString(),
                 new BusSignal(std::move(received), onOwner_.get()), SLOT(receive(QDBusMessage)));
}

void BusService::follow(const BusObject& object, const QString& property,
                        std::function<void(const QVariant&)> told) {
    const auto wasTold = std::make_shared<bool>(false);
    const BusObject properties{object.path, u"org.freedesktop.DBus.Properties"_s};
    subscribe(properties, u"PropertiesChanged"_s, {object.interfaceName},
              [this, object, property, told, wasTold](const QDBusMessage& signal) {
                  if (signal.signature() != u"sa{sv}as") return;
                  const auto values = qdbus_cast<QVariantMap>(signal.arguments().at(1));
                  if (const auto value = values.find(property); value != values.end()) {
                      *wasTold = true;
                      told(*value);
                  } else if (signal.arguments().at(2).toStringList().contains(property)) {
                      *wasTold = true;
                      read(object, property, told);
                  }
              });
    read(object, property, [told, wasTold](const QVariant& value) {
        // What the signal said is newer.
        if (!*wasTold) told(value);
    });
}

void BusService::read(const BusObject& object, const QString& property,
                      std::function<void(const QVariant&)> told) {
    call({object.path, u"org.freedesktop.DBus.Properties"_s}, u"Get"_s,
         {object.interfaceName, property}, [told = std::move(told)](const QDBusMessage& reply) {
             const auto value = firstArgument<QDBusVariant>(reply);
             told(value ? value->variant() : QVariant());
         });
}

QDBusMessage BusService::callAndWait(const BusObject& object, const QString& method) {
    if (!isRunning() || hangs_)
        return QDBusMessage::createError(QDBusError::NoReply, u"the service does not answer"_s);
    const QDBusMessage reply = connection_.bus()->call(
        QDBusMessage::createMethodCall(owner_, object.path, object.interfaceName, method),
        QDBus::Block, shortWait);
    const auto error = QDBusError(reply).type();
    if (error == QDBusError::NoReply || error == QDBusError::Timeout) {
        hangs_ = true;
        const auto ping = QDBusMessage::createMethodCall(owner_, object.path,
                                                         u"org.freedesktop.DBus.Peer"_s, u"Ping"_s);
        answerLater(*connection_.bus(), ping, onBus_.get(),
                    [this, asked = owner_](const QDBusMessage&) {
                        if (asked != owner_) return;
                        hangs_ = false;
                        renew();
                    });
    }
    return reply;
}

}  // namespace tendel

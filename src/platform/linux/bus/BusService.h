#pragma once

#include <QDBusMessage>
#include <QObject>
#include <QVariant>

#include <functional>
#include <memory>

#include "platform/linux/bus/BusConnection.h"

namespace tendel {

// An object of a service, seen through one of its interfaces.
struct BusObject {
    QString path;
    QString interfaceName;
};

// A program on a bus under its well-known name, followed through its ends and its starts; it is
// never started by us. All that is asked of it goes to the program that has the name now: when it
// is another one, the questions and listeners before are forgotten, and `changed` tells to ask
// afresh. Main thread only; the connection must outlive it.
class BusService {
public:
    using Handler = std::function<void(const QDBusMessage&)>;

    BusService(BusConnection& connection, QString name);

    // The bus can be lost before this was told so.
    bool isRunning() const { return connection_.bus() && !owner_.isEmpty(); }
    // Another program has the name, or none has, or the one that has it answers again.
    Signal<> changed;

    // The following hold until `changed`; without the service they do nothing.

    // `answered` gets a reply or an error, however late.
    void call(const BusObject& object, const QString& method, const QVariantList& arguments,
              Handler answered);
    // Without a path: from all objects.
    void listen(const BusObject& object, const QString& signal, Handler received);
    // `told` gets the property's value, an invalid one when it cannot be read.
    void read(const BusObject& object, const QString& property,
              std::function<void(const QVariant&)> told);
    // The same, now and after each change.
    void follow(const BusObject& object, const QString& property,
                std::function<void(const QVariant&)> told);

    // For what the service does not tell by itself: waits for the reply, a tenth of a second at
    // the most. An error when it does not come, and at once until the service answers again.
    QDBusMessage callAndWait(const BusObject& object, const QString& method);

private:
    void connectionMade();
    void takeOwner(const QString& owner);
    void renew();
    void subscribe(const BusObject& object, const QString& signal,
                   const QStringList& firstArguments, Handler received);

    BusConnection& connection_;
    QString name_;
    QString owner_;
    bool hangs_ = false;
    // What waits for the bus and for the owner; destroying one forgets it all.
    std::unique_ptr<QObject> onBus_;
    std::unique_ptr<QObject> onOwner_;
    Subscription connected_;
    Subscription lost_;
};

// The first argument of a reply or of a signal when it is of that type.
template <class T>
std::optional<T> firstArgument(const QDBusMessage& message) {
    if (message.type() == QDBusMessage::ErrorMessage || message.arguments().isEmpty())
        return std::nullopt;
    const QVariant first = message.arguments().constFirst();
    if (first.metaType() != QMetaType::fromType<T>()) return std::nullopt;
    return first.value<T>();
}

}  // namespace tendel

#include "MockService.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>

#include <utility>

namespace tendel {

QDBusArgument& operator<<(QDBusArgument& argument, const Inhibition& inhibition) {
    argument.beginStructure();
    argument << inhibition.who << inhibition.why;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, Inhibition& inhibition) {
    argument.beginStructure();
    argument >> inhibition.who >> inhibition.why;
    argument.endStructure();
    return argument;
}

MockService::MockService(const QString& address, const QString& name)
    : address_(address), name_(name) {
    qDBusRegisterMetaType<Inhibition>();
    qDBusRegisterMetaType<QList<Inhibition>>();
    join();
}

void MockService::join() {
    moveToThread(&thread_);
    thread_.start();
    auto bus = QDBusConnection::connectToBus(address_, name_);
    QMetaObject::invokeMethod(
        this, [&] { bus.registerVirtualObject("/", this, QDBusConnection::SubPath); },
        Qt::BlockingQueuedConnection);
    bus.registerService(name_);
}

void MockService::leave() {
    QDBusConnection::disconnectFromBus(name_);
    thread_.quit();
    thread_.wait();
}

void MockService::answer(const QString& method, const QVariantList& arguments) {
    const QMutexLocker lock(&mutex_);
    answers_[method] = arguments;
}

void MockService::setProperty(const QString& path, const QString& interfaceName,
                              const QString& property, const QVariant& value) {
    answer(property, {QVariant::fromValue(QDBusVariant(value))});
    emitSignal(path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
               {interfaceName, QVariantMap{{property, value}}, QStringList{}});
}

void MockService::emitSignal(const QString& path, const QString& interfaceName,
                             const QString& signal, const QVariantList& arguments) {
    auto message = QDBusMessage::createSignal(path, interfaceName, signal);
    message.setArguments(arguments);
    QDBusConnection(name_).send(message);
}

void MockService::setHanging(bool hangs) {
    QList<QDBusMessage> unanswered;
    {
        const QMutexLocker lock(&mutex_);
        hangs_ = hangs;
        if (!hangs) unanswered = std::exchange(unanswered_, {});
    }
    for (const QDBusMessage& message : unanswered)
        handleMessage(message, QDBusConnection(name_));
}

int MockService::calls(const QString& method) {
    const QMutexLocker lock(&mutex_);
    return calls_.value(method);
}

bool MockService::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
    const QMutexLocker lock(&mutex_);
    const QString method =
        message.member() == "Get" ? message.arguments().at(1).toString() : message.member();
    ++calls_[method];
    if (hangs_) {
        unanswered_ << message;
        message.setDelayedReply(true);
        return true;
    }
    if (const auto found = answers_.constFind(method); found != answers_.constEnd())
        connection.send(message.createReply(*found));
    else
        connection.send(message.createErrorReply(QDBusError::UnknownMethod, method));
    return true;
}

}  // namespace tendel

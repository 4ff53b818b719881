#pragma once

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QMap>
#include <QMutex>
#include <QThread>

#include <utility>

namespace tendel {

// The names of a program and its reason, as power managers list them.
struct Inhibition {
    QString who;
    QString why;

    friend QDBusArgument& operator<<(QDBusArgument& argument, const Inhibition& inhibition) {
        argument.beginStructure();
        argument << inhibition.who << inhibition.why;
        argument.endStructure();
        return argument;
    }
    friend const QDBusArgument& operator>>(const QDBusArgument& argument, Inhibition& inhibition) {
        argument.beginStructure();
        argument >> inhibition.who >> inhibition.why;
        argument.endStructure();
        return argument;
    }
};

// A program on a bus that answers what the test told it to, from a thread of its own.
class MockService : public QDBusVirtualObject {
public:
    MockService(const QString& address, const QString& name) : address_(address), name_(name) {
        qDBusRegisterMetaType<Inhibition>();
        qDBusRegisterMetaType<QList<Inhibition>>();
        join();
    }
    ~MockService() override { leave(); }

    // The connection ends, as when the program dies; and comes again.
    void leave() {
        QDBusConnection::disconnectFromBus(name_);
        thread_.quit();
        thread_.wait();
    }
    void join() {
        moveToThread(&thread_);
        thread_.start();
        auto bus = QDBusConnection::connectToBus(address_, name_);
        QMetaObject::invokeMethod(
            this, [&] { bus.registerVirtualObject("/", this, QDBusConnection::SubPath); },
            Qt::BlockingQueuedConnection);
        bus.registerService(name_);
    }

    // What a method answers, by its name; methods that are not told of do not exist.
    void answer(const QString& method, const QVariantList& arguments) {
        const QMutexLocker lock(&mutex_);
        answers_[method] = arguments;
    }
    void setProperty(const QString& path, const QString& interfaceName, const QString& property,
                     const QVariant& value) {
        answer(property, {QVariant::fromValue(QDBusVariant(value))});
        emitSignal(path, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                   {interfaceName, QVariantMap{{property, value}}, QStringList{}});
    }
    void emitSignal(const QString& path, const QString& interfaceName, const QString& signal,
                    const QVariantList& arguments) {
        auto message = QDBusMessage::createSignal(path, interfaceName, signal);
        message.setArguments(arguments);
        QDBusConnection(name_).send(message);
    }
    // While it hangs it keeps its name and answers nothing.
    void setHanging(bool hangs) {
        QList<QDBusMessage> unanswered;
        {
            const QMutexLocker lock(&mutex_);
            hangs_ = hangs;
            if (!hangs) unanswered = std::exchange(unanswered_, {});
        }
        for (const QDBusMessage& message : unanswered)
            handleMessage(message, QDBusConnection(name_));
    }
    // How often a method was called so far.
    int calls(const QString& method) {
        const QMutexLocker lock(&mutex_);
        return calls_.value(method);
    }

private:
    QString introspect(const QString&) const override { return QString(); }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        const QMutexLocker lock(&mutex_);
        const QString method =
            message.member() == "Get" ? message.arguments().at(1).toString() : message.member();
        ++calls_[method];
        if (hangs_) {
            unanswered_ << message;
            message.setDelayedReply(true);
        } else if (const auto found = answers_.constFind(method); found != answers_.constEnd()) {
            connection.send(message.createReply(*found));
        } else {
            connection.send(message.createErrorReply(QDBusError::UnknownMethod, method));
        }
        return true;
    }

    QString address_;
    QString name_;
    QThread thread_;
    QMutex mutex_;
    bool hangs_ = false;
    QList<QDBusMessage> unanswered_;
    QMap<QString, QVariantList> answers_;  // of properties under their names too
    QMap<QString, int> calls_;
};

}  // namespace tendel

Q_DECLARE_METATYPE(tendel::Inhibition)

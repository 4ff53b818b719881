#pragma once

#include <QDBusMessage>
#include <QObject>

#include <functional>
#include <utility>

namespace tendel {

// Receives one signal of a bus, and no longer once it is destroyed.
class BusSignal : public QObject {
    Q_OBJECT
public:
    explicit BusSignal(std::function<void(const QDBusMessage&)> received, QObject* parent = nullptr)
        : QObject(parent), received_(std::move(received)) {}

public Q_SLOTS:
    void receive(const QDBusMessage& message) { received_(message); }

private:
    std::function<void(const QDBusMessage&)> received_;
};

}  // namespace tendel

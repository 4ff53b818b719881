#pragma once

#include <QByteArray>
#include <QString>

namespace tendel {

// Where a message bus listens.
struct BusAddress {
    // What a client connects to; empty when there is no such bus. Without the identity of the bus
    // that listened there when the address was written: another one may have taken its place.
    QString text;
    // The socket's file or, after a zero byte, its abstract name; empty when it is none or not a
    // single one.
    QByteArray socket;

    bool hasSocketFile() const { return !socket.isEmpty() && socket.front() != '\0'; }

    // From the form that the D-Bus specification gives it.
    static BusAddress parse(const QString& address);
    // The buses of this login and of the computer, as the environment tells them.
    static BusAddress session();
    static BusAddress system();
};

}  // namespace tendel

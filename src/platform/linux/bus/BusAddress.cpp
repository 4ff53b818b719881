#include "platform/linux/bus/BusAddress.h"

#include <QStringList>

namespace tendel {

BusAddress BusAddress::parse(const QString& address) {
    BusAddress parsed;
    QStringList servers;
    for (const QString& server : address.split(u';', Qt::SkipEmptyParts)) {
        const qsizetype colon = server.indexOf(u':');
        // Starts a bus of its own where there is none.
        if (server.left(colon) == u"autolaunch") continue;
        QStringList pairs;
        for (const QString& pair : server.mid(colon + 1).split(u',', Qt::SkipEmptyParts)) {
            if (pair.startsWith(u"guid=")) continue;
            pairs << pair;
            if (server.left(colon) != u"unix") continue;
            const QByteArray value =
                QByteArray::fromPercentEncoding(pair.mid(pair.indexOf(u'=') + 1).toUtf8());
            if (pair.startsWith(u"path=")) parsed.socket = value;
            if (pair.startsWith(u"abstract=")) parsed.socket = '\0' + value;
            if (pair == u"runtime=yes") parsed.socket = qgetenv("XDG_RUNTIME_DIR") + "/bus";
        }
        servers << server.left(colon + 1) + pairs.join(u',');
    }
    if (servers.size() > 1) parsed.socket.clear();
    parsed.text = servers.join(u';');
    return parsed;
}

BusAddress BusAddress::session() {
    const QString address = qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS");
    if (!address.isEmpty()) return parse(address);
    return qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR")
               ? BusAddress{}
               : parse(QStringLiteral("unix:runtime=yes"));
}

BusAddress BusAddress::system() {
    return parse(qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS",
                                      QStringLiteral("unix:path=/run/dbus/system_bus_socket")));
}

}  // namespace tendel

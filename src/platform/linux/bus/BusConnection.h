#pragma once

#include <QDBusConnection>
#include <QFileSystemWatcher>

#include <memory>
#include <optional>
#include <utility>

#include "base/Backoff.h"
#include "base/Timer.h"
#include "platform/linux/bus/BusAddress.h"
#include "platform/linux/bus/BusProbe.h"

namespace tendel {

// A connection to a message bus that outlives the bus: when it goes away or was never there, this
// looks for it again with growing delays, and as soon as its socket is made anew. Never blocks for
// longer than an answering bus takes to welcome a client. Main thread only.
class BusConnection {
public:
    BusConnection(EventLoop& loop, BusAddress address);
    ~BusConnection();

    // Nothing while the bus cannot be reached.
    const std::optional<QDBusConnection>& bus() const { return bus_; }

    Signal<> connected;
    Signal<> lost;

private:
    // Which file the socket is: another one after the bus was started anew.
    using SocketIdentity = std::pair<std::uint64_t, std::int64_t>;

    void attempt();
    bool open();
    void lose();
    void retryLater();
    std::optional<SocketIdentity> socketIdentity() const;

    BusAddress address_;
    QString name_;
    BusProbe probe_;
    Backoff backoff_;
    std::optional<QDBusConnection> bus_;
    std::unique_ptr<QObject> disconnected_;
    std::unique_ptr<QFileSystemWatcher> socketFolder_;  // only while there is no bus
    std::optional<SocketIdentity> triedSocket_;
    Timer next_;
};

}  // namespace tendel

#pragma once

#include <QByteArray>
#include <QJsonDocument>

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "base/Backoff.h"
#include "base/Timer.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/wayland/ReadNotifier.h"

namespace tendel {

// sway's own socket (the protocol of i3), subscribed to what happens to windows and workspaces.
// When it is gone, it is looked for again with growing delays. Main thread only.
class SwayIpc {
public:
    // The numbers are those on the wire; events have the highest bit.
    enum class Message : std::uint32_t {
        subscribe = 2,
        getTree = 4,
        workspaceEvent = 0x80000000,
        windowEvent = 0x80000003,
    };

    // `path` as SWAYSOCK has it; empty: there is no sway, and none is looked for.
    SwayIpc(EventLoop& loop, std::string path);

    bool isConnected() const { return bool(socket_); }
    // Asks; the answer comes by `received`, answers in the order of the questions.
    void ask(Message question, const QByteArray& payload = {});
    // Handles what arrives until that is so, at the longest for `most`.
    void waitUntil(const std::function<bool()>& isSo, std::chrono::milliseconds most);

    Signal<> connectedChanged;
    Signal<Message, const QJsonDocument&> received;

private:
    void connect();
    bool open();
    void read();
    // Both: false when the other end is gone or does not speak the protocol.
    bool receive();
    bool handleMessages();
    void lose();

    std::string path_;
    Backoff backoff_;
    Timer retry_;
    FileDescriptor socket_;
    QByteArray buffer_;                     // what arrived of a message that is not complete
    std::optional<ReadNotifier> notifier_;  // after the socket: goes before it closes
};

}  // namespace tendel

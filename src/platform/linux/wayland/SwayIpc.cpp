#include "platform/linux/wayland/SwayIpc.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include "base/Log.h"

namespace tendel {

namespace {

constexpr std::string_view protocolSignature = "i3-ipc";

// What precedes every payload, in the computer's own byte order.
struct [[gnu::packed]] Header {
    std::array<char, protocolSignature.size()> signature;
    std::uint32_t length;
    std::uint32_t type;
};

constexpr std::uint32_t longestPayload = 64 * 1024 * 1024;

}  // namespace

SwayIpc::SwayIpc(EventLoop& loop, std::string path) : path_(std::move(path)), retry_(loop) {
    if (!path_.empty()) connect();
}

void SwayIpc::connect() {
    if (!open()) {
        socket_ = {};
        retry_.start(backoff_.next(), [this] { connect(); });
        return;
    }
    notifier_.emplace(socket_.value(), [this] { read(); });
    ask(Message::subscribe, R"(["window","workspace"])");
    connectedChanged.emit();
}

bool SwayIpc::open() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path_.size() >= sizeof address.sun_path) return false;
    path_.copy(address.sun_path, path_.size());
    buffer_.clear();
    socket_ = FileDescriptor(socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    return socket_ && ::connect(socket_.value(), reinterpret_cast<const sockaddr*>(&address),
                                sizeof address) == 0;
}

void SwayIpc::ask(Message question, const QByteArray& payload) {
    if (!socket_) return;
    Header header{.signature = {},
                  .length = static_cast<std::uint32_t>(payload.size()),
                  .type = static_cast<std::uint32_t>(question)};
    protocolSignature.copy(header.signature.data(), protocolSignature.size());
    const QByteArray message =
        QByteArray(reinterpret_cast<const char*>(&header), sizeof header) + payload;
    // A socket that does not take a few bytes belongs to a compositor that has stopped reading:
    // hanging up makes the descriptor readable, and the loss is handled there.
    if (send(socket_.value(), message.constData(), static_cast<std::size_t>(message.size()),
             MSG_NOSIGNAL) != message.size())
        shutdown(socket_.value(), SHUT_RDWR);
}

void SwayIpc::waitUntil(const std::function<bool()>& isSo, std::chrono::milliseconds most) {
    using Clock = std::chrono::steady_clock;
    const auto end = Clock::now() + most;
    while (socket_ && !isSo()) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
        pollfd descriptor{.fd = socket_.value(), .events = POLLIN, .revents = 0};
        if (left <= 0 || poll(&descriptor, 1, static_cast<int>(left)) <= 0) return;
        read();
    }
}

void SwayIpc::read() {
    if (!receive() || !handleMessages()) lose();
}

bool SwayIpc::receive() {
    std::array<char, 64 * 1024> chunk;
    for (;;) {
        const ssize_t count = recv(socket_.value(), chunk.data(), chunk.size(), 0);
        if (count > 0)
            buffer_.append(chunk.data(), static_cast<qsizetype>(count));
        else
            return count < 0 && (errno == EAGAIN || errno == EINTR);
    }
}

bool SwayIpc::handleMessages() {
    constexpr qsizetype headerSize = sizeof(Header);
    while (buffer_.size() >= headerSize) {
        Header header{};
        std::memcpy(&header, buffer_.constData(), sizeof header);
        if (std::string_view(header.signature.data(), header.signature.size()) !=
                protocolSignature ||
            header.length > longestPayload)
            return false;
        const qsizetype size = headerSize + static_cast<qsizetype>(header.length);
        if (buffer_.size() < size) break;
        const auto payload = QJsonDocument::fromJson(buffer_.mid(headerSize, header.length));
        buffer_.remove(0, size);
        backoff_.reset();  // one that accepts and hangs up at once does not count as there
        received.emit(Message{header.type}, payload);
    }
    return true;
}

void SwayIpc::lose() {
    log(LogLevel::info, "presence", "sway does not answer any more; looking for it again");
    notifier_.reset();
    socket_ = {};
    retry_.start(backoff_.next(), [this] { connect(); });
    connectedChanged.emit();
}

}  // namespace tendel

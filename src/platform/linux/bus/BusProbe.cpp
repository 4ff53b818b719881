#include "platform/linux/bus/BusProbe.h"

#include <QSocketNotifier>

#include <sys/socket.h>
#include <sys/un.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace tendel {

namespace {

constexpr Duration longestWait = std::chrono::seconds(5);

}  // namespace

BusProbe::BusProbe(EventLoop& loop) : patience_(loop) {}

BusProbe::~BusProbe() = default;

void BusProbe::ask(const BusAddress& address, std::function<void(bool answers)> told) {
    notifier_.reset();
    told_ = std::move(told);
    if (address.socket.isEmpty() || !connect(address.socket)) {
        const bool answers = address.socket.isEmpty() && !address.text.isEmpty();
        patience_.start(Duration::zero(), [this, answers] { finish(answers); });
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(socket_.value(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(), [this] {
        std::array<char, 256> answer;
        const bool answers = ::recv(socket_.value(), answer.data(), answer.size(), 0) > 0;
        notifier_->setEnabled(false);
        // Not from within the notifier, which goes when all is done.
        patience_.start(Duration::zero(), [this, answers] { finish(answers); });
    });
    patience_.start(longestWait, [this] { finish(false); });
}

// Says what every client says first, and that it would like to know the ways to authenticate.
bool BusProbe::connect(const QByteArray& name) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const auto size = static_cast<std::size_t>(name.size());
    if (size >= sizeof address.sun_path) return false;
    std::copy(name.begin(), name.end(), address.sun_path);
    socket_ = FileDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + size);
    constexpr std::array<char, 7> greeting{'\0', 'A', 'U', 'T', 'H', '\r', '\n'};
    return socket_ &&
           ::connect(socket_.value(), reinterpret_cast<const sockaddr*>(&address), length) == 0 &&
           ::send(socket_.value(), greeting.data(), greeting.size(), MSG_NOSIGNAL) ==
               static_cast<ssize_t>(greeting.size());
}

void BusProbe::finish(bool answers) {
    notifier_.reset();
    socket_ = FileDescriptor();
    patience_.stop();
    const auto told = std::exchange(told_, {});
    told(answers);
}

}  // namespace tendel

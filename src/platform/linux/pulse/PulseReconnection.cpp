#include "platform/linux/pulse/PulseReconnection.h"

#include <sys/inotify.h>

#include <algorithm>
#include <utility>

#include "platform/linux/FileEvents.h"

namespace tendel {

namespace {

// The socket is there a moment before the server listens on it.
constexpr Duration untilServerListens = std::chrono::milliseconds(10);

// A server that falls over again and again at its start is not met with a fresh patience each time.
constexpr Duration stableFor = std::chrono::seconds(10);

}  // namespace

PulseReconnection::PulseReconnection(EventLoop& loop, Duration longestDelay,
                                     std::function<void()> attempt)
    : loop_(loop),
      longestDelay_(longestDelay),
      attempt_(std::move(attempt)),
      socketFolder_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    if (!socketFolder_) return;
    socketFolderNotifier_ =
        std::make_unique<QSocketNotifier>(socketFolder_.value(), QSocketNotifier::Read);
    QObject::connect(socketFolderNotifier_.get(), &QSocketNotifier::activated,
                     [this] { socketFolderChanged(); });
}

void PulseReconnection::tryNow() {
    attemptIn(Duration::zero());
}

void PulseReconnection::connected() {
    connectedSince_ = loop_.monotonicNow();
    next_.stop();
}

void PulseReconnection::lost() {
    const auto since = std::exchange(connectedSince_, std::nullopt);
    if (since && loop_.monotonicNow() - *since >= stableFor) backoff_.reset();
    watchForSocket();
    attemptIn(std::min(backoff_.next(), longestDelay_));
}

void PulseReconnection::attemptIn(Duration delay) {
    next_.start(delay, attempt_);
}

// Again at each loss: the folder may be another one by now. A folder that is watched stays so.
void PulseReconnection::watchForSocket() {
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    if (!socketFolder_ || runtime.isEmpty()) return;
    ::inotify_add_watch(socketFolder_.value(), (runtime + "/pulse").constData(),
                        IN_ONLYDIR | IN_CREATE | IN_MOVED_TO);
}

void PulseReconnection::socketFolderChanged() {
    bool isSocket = false;
    readFileEvents(socketFolder_, [&](const FileEvent& event) {
        isSocket |= event.name == "native" || (event.mask & IN_Q_OVERFLOW);
    });
    if (!isSocket || !next_.isRunning()) return;
    backoff_.reset();
    attemptIn(untilServerListens);
}

}  // namespace tendel

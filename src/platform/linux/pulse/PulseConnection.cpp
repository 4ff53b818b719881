#include "platform/linux/pulse/PulseConnection.h"

#include <pulse/context.h>
#include <sys/inotify.h>

#include "platform/linux/FileEvents.h"
#include "platform/linux/pulse/PulseClientConfiguration.h"

namespace tendel {

namespace {

// The socket is there a moment before the server listens on it.
constexpr Duration untilServerListens = std::chrono::milliseconds(10);

// A server that falls over again and again at its start is not met with a fresh patience each time.
constexpr Duration stableFor = std::chrono::seconds(10);

}  // namespace

PulseConnection::PulseConnection(EventLoop& loop, Duration longestDelay)
    : loop_(loop),
      longestDelay_(longestDelay),
      socketFolder_(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      mainLoop_(loop) {
    if (!socketFolder_) return;
    socketFolderNotifier_ =
        std::make_unique<QSocketNotifier>(socketFolder_.value(), QSocketNotifier::Read);
    QObject::connect(socketFolderNotifier_.get(), &QSocketNotifier::activated,
                     [this] { socketFolderChanged(); });
}

PulseConnection::~PulseConnection() {
    release();
}

void PulseConnection::open() {
    next_.start(Duration::zero(), [this] { connect(); });
}

void PulseConnection::connect() {
    release();
    {
        const PulseClientConfiguration withoutSharedMemory;
        context_ = pa_context_new(mainLoop_.api(), "Tendel");
    }
    if (!context_) {
        lose();
        return;
    }
    const int result = pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr);
    // From here on, since an attempt that fails at once would tell of it from within itself.
    pa_context_set_state_callback(
        context_,
        [](pa_context*, void* self) { static_cast<PulseConnection*>(self)->stateChanged(); }, this);
    if (result < 0)
        lose();
    else
        stateChanged();
}

void PulseConnection::stateChanged() {
    const auto state = pa_context_get_state(context_);
    if (!PA_CONTEXT_IS_GOOD(state)) {
        lose();
    } else if (state == PA_CONTEXT_READY && !isReady_) {
        isReady_ = true;
        readySince_ = loop_.monotonicNow();
        onReady(context_);
    }
}

void PulseConnection::lose() {
    const bool wasReady = std::exchange(isReady_, false);
    if (context_) pa_context_set_state_callback(context_, nullptr, nullptr);
    if (wasReady && loop_.monotonicNow() - readySince_ >= stableFor) backoff_.reset();
    // The context may be at work further up the stack.
    next_.start(Duration::zero(), [this] {
        release();
        watchForSocket();
        next_.start(std::min(backoff_.next(), longestDelay_), [this] { connect(); });
    });
    if (wasReady) onLost();
}

void PulseConnection::release() {
    if (!context_) return;
    pa_context_set_state_callback(context_, nullptr, nullptr);
    pa_context_disconnect(context_);
    pa_context_unref(std::exchange(context_, nullptr));
    isReady_ = false;
}

// Again at each loss: the folder may be another one by now. A folder that is watched stays so.
void PulseConnection::watchForSocket() {
    const QByteArray runtime = qgetenv("XDG_RUNTIME_DIR");
    if (!socketFolder_ || runtime.isEmpty()) return;
    ::inotify_add_watch(socketFolder_.value(), (runtime + "/pulse").constData(),
                        IN_ONLYDIR | IN_CREATE | IN_MOVED_TO);
}

void PulseConnection::socketFolderChanged() {
    bool isSocket = false;
    readFileEvents(socketFolder_, [&](const FileEvent& event) {
        isSocket |= event.name == "native" || (event.mask & IN_Q_OVERFLOW);
    });
    if (!isSocket || context_) return;
    backoff_.reset();
    next_.start(untilServerListens, [this] { connect(); });
}

}  // namespace tendel

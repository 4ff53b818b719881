#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>
#include <optional>

#include "base/Backoff.h"
#include "base/Timer.h"
#include "platform/linux/FileDescriptor.h"

namespace tendel {

// Says when to try again to reach the user's audio server: as soon as the server's socket appears,
// and otherwise after growing delays. Main thread only.
class PulseReconnection {
public:
    // `longestDelay` bounds the time between two attempts.
    PulseReconnection(EventLoop& loop, Duration longestDelay, std::function<void()> attempt);

    // Has it tried at once, though not within this call.
    void tryNow();
    // The attempt came to a connection.
    void connected();
    // The attempt failed, or the connection is lost.
    void lost();

private:
    void attemptIn(Duration delay);
    void watchForSocket();
    void socketFolderChanged();

    EventLoop& loop_;
    Duration longestDelay_;
    std::function<void()> attempt_;
    Backoff backoff_;
    std::optional<MonotonicInstant> connectedSince_;
    FileDescriptor socketFolder_;
    std::unique_ptr<QSocketNotifier> socketFolderNotifier_;
    Timer next_{loop_};
};

}  // namespace tendel

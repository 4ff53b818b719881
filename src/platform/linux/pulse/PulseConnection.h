#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

#include "base/Backoff.h"
#include "base/Timer.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/pulse/PulseMainLoop.h"

struct pa_context;

namespace tendel {

// A connection to the user's audio server (PulseAudio, or PipeWire in its place) that comes back
// by itself after the server was away: as soon as the server's socket appears, and otherwise after
// growing delays. It never starts a server. Main thread only.
class PulseConnection {
public:
    // `longestDelay` bounds the time between two attempts.
    explicit PulseConnection(EventLoop& loop, Duration longestDelay = Backoff::longest);
    ~PulseConnection();
    PulseConnection(const PulseConnection&) = delete;
    PulseConnection& operator=(const PulseConnection&) = delete;

    // Tries at once, though not within this call.
    void open();

    // Each `onReady` is followed by one `onLost`, except at the connection's own end. Between them
    // the context can be used; operations under way at `onLost` never complete.
    std::function<void(pa_context*)> onReady = [](pa_context*) {};
    std::function<void()> onLost = [] {};

private:
    void connect();
    void stateChanged();
    void lose();
    void release();
    void watchForSocket();
    void socketFolderChanged();

    EventLoop& loop_;
    Duration longestDelay_;
    Backoff backoff_;
    MonotonicInstant readySince_{};
    bool isReady_ = false;
    FileDescriptor socketFolder_;
    std::unique_ptr<QSocketNotifier> socketFolderNotifier_;
    PulseMainLoop mainLoop_;
    pa_context* context_ = nullptr;
    Timer next_{loop_};
};

}  // namespace tendel

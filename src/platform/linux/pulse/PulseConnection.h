#pragma once

#include <functional>

#include "base/Timer.h"
#include "platform/linux/pulse/PulseMainLoop.h"
#include "platform/linux/pulse/PulseReconnection.h"

struct pa_context;

namespace tendel {

// A connection to the user's audio server (PulseAudio, or PipeWire in its place) that comes back
// by itself after the server was away. It never starts a server. Main thread only.
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

    PulseMainLoop mainLoop_;
    pa_context* context_ = nullptr;
    bool isReady_ = false;
    PulseReconnection reconnection_;
    Timer release_;
};

}  // namespace tendel

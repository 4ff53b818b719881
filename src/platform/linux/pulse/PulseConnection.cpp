#include "platform/linux/pulse/PulseConnection.h"

#include <pulse/context.h>

#include <utility>

#include "platform/linux/pulse/PulseClientConfiguration.h"

namespace tendel {

PulseConnection::PulseConnection(EventLoop& loop, Duration longestDelay)
    : mainLoop_(loop), reconnection_(loop, longestDelay, [this] { connect(); }), release_(loop) {}

PulseConnection::~PulseConnection() {
    release();
}

void PulseConnection::open() {
    reconnection_.tryNow();
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
        reconnection_.connected();
        onReady(context_);
    }
}

void PulseConnection::lose() {
    const bool wasReady = std::exchange(isReady_, false);
    if (context_) pa_context_set_state_callback(context_, nullptr, nullptr);
    // The context may be at work further up the stack.
    release_.start(Duration::zero(), [this] {
        release();
        reconnection_.lost();
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

}  // namespace tendel

#include "platform/linux/pulse/PulsePlayback.h"

#include <pulse/context.h>
#include <pulse/error.h>
#include <pulse/proplist.h>
#include <pulse/stream.h>
#include <pulse/subscribe.h>
#include <pulse/thread-mainloop.h>

#include <algorithm>
#include <initializer_list>
#include <utility>

#include "platform/linux/pulse/PulseClientConfiguration.h"

namespace tendel {

namespace {

constexpr pa_sample_spec format{PA_SAMPLE_FLOAT32NE, PulsePlayback::sampleRate, 2};
constexpr std::uint32_t frameBytes = 2 * sizeof(float);

// Each wake-up renders this much, 90 ms.
constexpr std::uint32_t periodFrames = 4320;
// Of the buffer the server keeps two requests as a reserve and sleeps while the rest plays: if
// there were no rest, PulseAudio 16.1 would not sleep at all (seen: 120,000 wake-ups a minute).
constexpr std::uint32_t bufferFrames = 3 * periodFrames;
constexpr std::uint32_t unset = static_cast<std::uint32_t>(-1);

struct Property {
    const char* key;
    const char* value;
};

struct PropertyList {
    PropertyList(std::initializer_list<Property> properties) {
        for (const auto& property : properties)
            pa_proplist_sets(list, property.key, property.value);
    }
    ~PropertyList() { pa_proplist_free(list); }
    PropertyList(const PropertyList&) = delete;
    PropertyList& operator=(const PropertyList&) = delete;

    pa_proplist* list = pa_proplist_new();
};

}  // namespace

PulsePlayback::PulsePlayback(EventLoop& loop, AudioRenderer& renderer, Listener listener)
    : loop_(loop),
      renderer_(renderer),
      listener_(std::move(listener)),
      thread_(pa_threaded_mainloop_new()) {
    if (connect()) return;
    tell([told = listener_.lost, why = reason()] { told(why); });
}

PulsePlayback::~PulsePlayback() {
    if (thread_) pa_threaded_mainloop_stop(thread_);
    releaseStream();
    if (context_) {
        pa_context_set_state_callback(context_, nullptr, nullptr);
        pa_context_set_subscribe_callback(context_, nullptr, nullptr);
        pa_context_disconnect(context_);
        pa_context_unref(context_);
    }
    if (thread_) pa_threaded_mainloop_free(thread_);
}

bool PulsePlayback::connect() {
    if (!thread_) return false;
    pa_threaded_mainloop_set_name(thread_, "sound");
    {
        const PropertyList properties{{PA_PROP_APPLICATION_NAME, "Tendel"},
                                      {PA_PROP_APPLICATION_ID, "app.tendel.Tendel"},
                                      {PA_PROP_APPLICATION_ICON_NAME, "app.tendel.Tendel"}};
        const PulseClientConfiguration withoutSharedMemory;
        context_ = pa_context_new_with_proplist(pa_threaded_mainloop_get_api(thread_), nullptr,
                                                properties.list);
    }
    if (!context_) return false;
    if (pa_context_connect(context_, nullptr, PA_CONTEXT_NOAUTOSPAWN, nullptr) < 0) return false;
    pa_context_set_state_callback(
        context_,
        [](pa_context*, void* self) { static_cast<PulsePlayback*>(self)->contextChanged(); }, this);
    return pa_threaded_mainloop_start(thread_) >= 0;
}

void PulsePlayback::contextChanged() {
    const auto state = pa_context_get_state(context_);
    if (state == PA_CONTEXT_READY)
        makeStream();
    else if (!PA_CONTEXT_IS_GOOD(state))
        tell([told = listener_.lost, why = reason()] { told(why); });
}

void PulsePlayback::makeStream() {
    const PropertyList properties{{PA_PROP_MEDIA_NAME, "Focus sounds"},
                                  {PA_PROP_MEDIA_ROLE, "music"}};
    stream_ = pa_stream_new_with_proplist(context_, nullptr, &format, nullptr, properties.list);
    if (!stream_) return waitForOutput();
    isStreamNew_ = true;
    pa_stream_set_state_callback(
        stream_, [](pa_stream*, void* self) { static_cast<PulsePlayback*>(self)->streamChanged(); },
        this);
    pa_stream_set_write_callback(
        stream_,
        [](pa_stream*, std::size_t bytes, void* self) {
            static_cast<PulsePlayback*>(self)->write(bytes);
        },
        this);
    const pa_buffer_attr buffer{.maxlength = unset,
                                .tlength = bufferFrames * frameBytes,
                                .prebuf = unset,
                                .minreq = periodFrames * frameBytes,
                                .fragsize = unset};
    if (pa_stream_connect_playback(stream_, nullptr, &buffer, PA_STREAM_NOFLAGS, nullptr, nullptr) <
        0)
        waitForOutput();
}

void PulsePlayback::streamChanged() {
    const auto state = pa_stream_get_state(stream_);
    if (state == PA_STREAM_READY)
        tell(listener_.playing);
    else if (!PA_STREAM_IS_GOOD(state))
        waitForOutput();
}

void PulsePlayback::waitForOutput() {
    const auto why = reason();
    releaseStream();
    if (!PA_CONTEXT_IS_GOOD(pa_context_get_state(context_))) return;  // the context tells of that
    pa_context_set_subscribe_callback(
        context_,
        [](pa_context*, pa_subscription_event_type_t event, std::uint32_t, void* self) {
            auto& playback = *static_cast<PulsePlayback*>(self);
            if ((event & PA_SUBSCRIPTION_EVENT_TYPE_MASK) == PA_SUBSCRIPTION_EVENT_NEW &&
                !playback.stream_)
                playback.makeStream();
        },
        this);
    if (auto* asked = pa_context_subscribe(context_, PA_SUBSCRIPTION_MASK_SINK, nullptr, nullptr))
        pa_operation_unref(asked);
    tell([told = listener_.noOutput, why] { told(why); });
}

void PulsePlayback::releaseStream() {
    if (!stream_) return;
    pa_stream_set_state_callback(stream_, nullptr, nullptr);
    pa_stream_set_write_callback(stream_, nullptr, nullptr);
    pa_stream_disconnect(stream_);
    pa_stream_unref(std::exchange(stream_, nullptr));
}

// Renders straight into the server's buffer.
void PulsePlayback::write(std::size_t bytes) {
    if (std::exchange(isStreamNew_, false)) renderer_.begin();
    while (bytes >= frameBytes) {
        void* data = nullptr;
        std::size_t length = bytes;
        if (pa_stream_begin_write(stream_, &data, &length) < 0 || length < frameBytes) return;
        length -= length % frameBytes;
        auto* sample = static_cast<float*>(data);
        for (std::size_t left = length / frameBytes; left > 0;) {
            const std::size_t frames = std::min(left, left_.size());
            renderer_.render(left_.data(), right_.data(), frames);
            for (std::size_t i = 0; i < frames; ++i) {
                *sample++ = left_[i];
                *sample++ = right_[i];
            }
            left -= frames;
        }
        if (pa_stream_write(stream_, data, length, nullptr, 0, PA_SEEK_RELATIVE) < 0) return;
        bytes -= length;
    }
}

void PulsePlayback::tell(std::function<void()> what) {
    loop_.post([isThere = std::weak_ptr(isThere_), what = std::move(what)] {
        if (!isThere.expired()) what();
    });
}

std::string PulsePlayback::reason() const {
    return pa_strerror(context_ ? pa_context_errno(context_) : PA_ERR_INTERNAL);
}

}  // namespace tendel

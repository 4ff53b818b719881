#include "platform/linux/pulse/PulseMicrophone.h"

#include <pulse/introspect.h>
#include <pulse/subscribe.h>
#include <unistd.h>

#include <utility>

#include "platform/linux/pulse/PulseRecording.h"
#include "presence/UserPresence.h"

namespace tendel {

namespace {

// The server tells of one change in several messages.
constexpr Duration untilMessagesEnd = std::chrono::milliseconds(20);

PulseRecording::Properties toProperties(const pa_proplist* list) {
    PulseRecording::Properties properties;
    void* position = nullptr;
    while (const char* key = pa_proplist_iterate(list, &position))
        if (const char* value = pa_proplist_gets(list, key)) properties.emplace(key, value);
    return properties;
}

void forget(pa_operation* operation) {
    if (operation) pa_operation_unref(operation);
}

}  // namespace

// One round of questions to the server: which streams record and then, for each, from what and for
// whom. Must not go before it is done unless the connection is lost.
class PulseMicrophone::Listing {
public:
    Listing(PulseMicrophone& microphone, pa_context* context)
        : microphone_(microphone), context_(context) {
        ask(pa_context_get_source_output_info_list(context_, gotStream, this));
    }

private:
    static void gotStream(pa_context*, const pa_source_output_info* info, int end, void* self) {
        auto& listing = *static_cast<Listing*>(self);
        if (end != 0) return listing.answered(end);
        if (info->corked || info->source == PA_INVALID_INDEX) return;
        auto& recording = listing.recordings_.emplace_back();
        recording.source = info->source;
        if (info->client != PA_INVALID_INDEX) recording.client = info->client;
        if (info->resample_method) recording.resampleMethod = info->resample_method;
        recording.properties = toProperties(info->proplist);
        listing.ask(
            pa_context_get_source_info_by_index(listing.context_, info->source, gotSource, self));
        if (recording.client)
            listing.ask(
                pa_context_get_client_info(listing.context_, info->client, gotClient, self));
    }

    static void gotSource(pa_context*, const pa_source_info* info, int end, void* self) {
        auto& listing = *static_cast<Listing*>(self);
        if (end != 0) return listing.answered(1);  // it may be gone by now
        for (auto& recording : listing.recordings_)
            if (recording.source == info->index)
                recording.isFromMonitor = info->monitor_of_sink != PA_INVALID_INDEX;
    }

    static void gotClient(pa_context*, const pa_client_info* info, int end, void* self) {
        auto& listing = *static_cast<Listing*>(self);
        if (end != 0) return listing.answered(1);
        for (auto& recording : listing.recordings_)
            if (recording.client == info->index)
                recording.clientProperties = toProperties(info->proplist);
    }

    void ask(pa_operation* operation) {
        if (!operation) return;  // the connection is about to be told that it is lost
        ++awaited_;
        forget(operation);
    }

    void answered(int end) {
        canTell_ &= end > 0;
        if (--awaited_ > 0) return;
        std::vector<MicrophoneUser> users;
        for (const auto& recording : recordings_)
            if (auto user = recording.user(::getpid())) users.push_back(std::move(*user));
        // The last thing to do here: it destroys the listing.
        microphone_.listed(canTell_ ? std::optional(std::move(users)) : std::nullopt);
    }

    PulseMicrophone& microphone_;
    pa_context* context_;
    std::vector<PulseRecording> recordings_;
    int awaited_ = 0;
    bool canTell_ = true;
};

PulseMicrophone::PulseMicrophone(EventLoop& loop, Duration longestDelay)
    : nextListing_(loop), connection_(loop, longestDelay) {
    connection_.onReady = [this](pa_context* context) { subscribe(context); };
    connection_.onLost = [this] {
        context_ = nullptr;
        nextListing_.stop();
        listed(std::nullopt);
    };
    connection_.open();
}

PulseMicrophone::~PulseMicrophone() = default;

void PulseMicrophone::addTo(PresenceSources& sources) {
    sources.microphones.push_back(this);
}

void PulseMicrophone::subscribe(pa_context* context) {
    context_ = context;
    pa_context_set_subscribe_callback(
        context,
        [](pa_context*, pa_subscription_event_type_t, std::uint32_t, void* self) {
            static_cast<PulseMicrophone*>(self)->listSoon();
        },
        this);
    constexpr auto told = static_cast<pa_subscription_mask_t>(PA_SUBSCRIPTION_MASK_SOURCE |
                                                              PA_SUBSCRIPTION_MASK_SOURCE_OUTPUT);
    forget(pa_context_subscribe(context, told, nullptr, nullptr));
    list();
}

void PulseMicrophone::listSoon() {
    if (listing_)
        isOutdated_ = true;
    else if (!nextListing_.isRunning())
        nextListing_.start(untilMessagesEnd, [this] { list(); });
}

void PulseMicrophone::list() {
    isOutdated_ = false;
    listing_ = std::make_unique<Listing>(*this, context_);
}

void PulseMicrophone::listed(std::optional<std::vector<MicrophoneUser>> users) {
    listing_.reset();
    if (std::exchange(isOutdated_, false) && context_) listSoon();
    if (std::exchange(users_, users) != users) changed.emit();
}

}  // namespace tendel

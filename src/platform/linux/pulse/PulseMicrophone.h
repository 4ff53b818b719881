#pragma once

#include <cstdint>

#include "platform/linux/pulse/PulseConnection.h"
#include "presence/CallMonitor.h"

namespace tendel {

struct PresenceSources;

// Who records, as the user's audio server tells it. Kept up to date by the server's own messages;
// without a server it cannot tell. Main thread only.
class PulseMicrophone : public MicrophoneSource {
public:
    explicit PulseMicrophone(EventLoop& loop, Duration longestDelay = Backoff::longest);
    ~PulseMicrophone() override;

    std::optional<std::vector<MicrophoneUser>> users() const override { return users_; }

    void addTo(PresenceSources& sources);

private:
    class Listing;

    void subscribe(pa_context* context);
    void listSoon();
    void list();
    void listed(std::optional<std::vector<MicrophoneUser>> users);

    pa_context* context_ = nullptr;  // while connected
    std::optional<std::vector<MicrophoneUser>> users_;
    std::unique_ptr<Listing> listing_;  // while the server is being asked
    bool isOutdated_ = false;           // what is being asked for changed meanwhile
    Timer nextListing_;
    PulseConnection connection_;  // last member: goes first
};

}  // namespace tendel

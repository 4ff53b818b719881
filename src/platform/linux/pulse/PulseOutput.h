#pragma once

#include <memory>
#include <string>

#include "platform/linux/pulse/PulsePlayback.h"
#include "platform/linux/pulse/PulseReconnection.h"

namespace tendel {

// Plays on the default output of the user's audio server (PulseAudio, or PipeWire in its place),
// also when that becomes another one, and again after the server was away. It never starts a
// server. Only while it plays has it a thread and a connection. Main thread only.
class PulseOutput : public AudioOutput {
public:
    // `longestDelay` bounds the time between two attempts to reach the server.
    explicit PulseOutput(EventLoop& loop, Duration longestDelay = Backoff::longest)
        : loop_(loop), longestDelay_(longestDelay) {}

    // The server converts where its device has another one.
    double sampleRate() const override { return PulsePlayback::sampleRate; }
    void start(AudioRenderer& renderer) override;
    void stop() override;

private:
    // From `start` to `stop`.
    struct Session {
        AudioRenderer& renderer;
        PulseReconnection reconnection;
        bool isPlaying = false;
        bool hasPlayed = false;
        bool hasToldFailure = false;
        std::unique_ptr<PulsePlayback> playback{};
    };

    void connect();
    void playing();
    void interrupted(const std::string& why);

    EventLoop& loop_;
    Duration longestDelay_;
    std::unique_ptr<Session> session_;
};

}  // namespace tendel

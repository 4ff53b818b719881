#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "base/EventLoop.h"
#include "sound/AudioOutput.h"

struct pa_context;
struct pa_stream;
struct pa_threaded_mainloop;

namespace tendel {

// One attempt to play: a connection to the audio server and a stream on it, on a thread of
// libpulse's that renders. A stream whose output goes away is made anew as soon as there is
// another. Made and destroyed on the main thread, with which the thread ends.
class PulsePlayback {
public:
    // What it tells on the main thread, where it may be destroyed meanwhile.
    struct Listener {
        std::function<void()> playing;                     // a stream begins
        std::function<void(const std::string&)> noOutput;  // it waits for one, and why
        std::function<void(const std::string&)> lost;      // the server, for good, and why
    };

    PulsePlayback(EventLoop& loop, AudioRenderer& renderer, Listener listener);
    ~PulsePlayback();
    PulsePlayback(const PulsePlayback&) = delete;
    PulsePlayback& operator=(const PulsePlayback&) = delete;

    static constexpr std::uint32_t sampleRate = 48000;

private:
    // The main thread, before the other begins.
    bool connect();
    // libpulse's thread.
    void contextChanged();
    void makeStream();
    void streamChanged();
    void waitForOutput();
    void releaseStream();
    void write(std::size_t bytes);
    // Any thread.
    void tell(std::function<void()> what);
    std::string reason() const;

    EventLoop& loop_;
    AudioRenderer& renderer_;
    Listener listener_;
    std::shared_ptr<bool> isThere_ = std::make_shared<bool>();
    pa_threaded_mainloop* thread_ = nullptr;
    pa_context* context_ = nullptr;
    pa_stream* stream_ = nullptr;
    bool isStreamNew_ = false;
    std::array<float, 512> left_{}, right_{};
};

}  // namespace tendel

#pragma once

#include <cstddef>
#include <string>

#include "base/Signal.h"

namespace tendel {

// Fills the output's buffers. Called on the output's real-time thread, where nothing may allocate,
// lock, log or call the system.
class AudioRenderer {
public:
    virtual ~AudioRenderer() = default;
    // Silence was heard before what is rendered next: playing begins, or goes on after an
    // interruption.
    virtual void begin() = 0;
    // Writes `frames` samples of each channel, within −1 to 1.
    virtual void render(float* left, float* right, std::size_t frames) = 0;
};

// Where sound goes: the user's default output. Main thread only, but for the renderer's calls. It
// comes back by itself when a device or the server goes away, and tells so.
class AudioOutput {
public:
    virtual ~AudioOutput() = default;
    // Hz, what the renderer is to make sound at; 0 or less where the output would not tell. The
    // same from `start` to `stop`.
    virtual double sampleRate() const = 0;
    // Begins to call the renderer, as soon as there is something to play on; until `stop` returns
    // it may be called at any moment.
    virtual void start(AudioRenderer& renderer) = 0;
    // Closes the stream. Afterwards nothing of it costs anything.
    virtual void stop() = 0;

    Signal<> restarted;                 // playing goes on after an interruption
    Signal<const std::string&> failed;  // why it cannot play; it goes on trying, and tells once
};

}  // namespace tendel

#pragma once

#include "sound/AudioOutput.h"

namespace tendel {

// An output on which nothing is ever heard: for a computer without sound, and for tests.
class SilentAudio : public AudioOutput {
public:
    double sampleRate() const override { return 0; }
    void start(AudioRenderer&) override {}
    void stop() override {}
};

}  // namespace tendel

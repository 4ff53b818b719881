#pragma once

#include <span>
#include <vector>

#include "sound/SineVoice.h"
#include "sound/SoundSource.h"

namespace tendel {

// A partial of a bell.
struct ChimePartial {
    double hertz = 0;
    float peak = 0;
    double decay = 1;  // seconds to −60 dB
    double pan = 0.5;  // 0 left, 1 right
    double start = 0;  // seconds
};

// Bells, struck once. Ends in silence.
class Chime final : public SoundSource {
public:
    Chime(std::span<const ChimePartial> partials, double sampleRate);
    void render(float* left, float* right, std::size_t frames) override;

private:
    struct Strike {
        SineVoice voice;
        std::size_t wait = 0;  // samples
    };

    std::vector<Strike> strikes_;
};

}  // namespace tendel

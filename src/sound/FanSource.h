#pragma once

#include "sound/Filters.h"
#include "sound/NoiseChannel.h"
#include "sound/SoundSource.h"

namespace tendel {

// A fan in the room: the air that it moves, and the soft hum of its blades, which is never quite
// steady.
class FanSource final : public SoundSource {
public:
    FanSource(double sampleRate, std::uint64_t seed);
    void render(float* left, float* right, std::size_t frames) override;

private:
    struct Channel {
        NoiseChannel noise;
        OnePoleLowPass filter;
    };

    float nextAir(Channel& channel, float pulse);

    SoundRandom random_;
    Channel left_, right_;
    Drift blade_;  // blades passing a sample
    Drift hum_;    // strength of the tone
    float air_;    // gain of the air under its cut-off
    float phase_ = 0;
};

}  // namespace tendel

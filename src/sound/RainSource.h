#pragma once

#include "sound/Bursts.h"
#include "sound/Filters.h"
#include "sound/NoiseChannel.h"
#include "sound/SoundSource.h"

namespace tendel {

// Near drops over the wash of the rain further off.
class RainSource final : public SoundSource {
public:
    struct Drops : Bursts {
        OnePoleHighPass filter;

        float next(float chance, float sampleRate, SoundRandom& random);
    };

    RainSource(double sampleRate, std::uint64_t seed);
    void render(float* left, float* right, std::size_t frames) override;

private:
    struct Channel {
        NoiseChannel noise{NoiseChannel::Color::pink};
        OnePoleLowPass filter;
        Drops drops;
    };

    float next(Channel& channel, float density);

    float sampleRate_;
    SoundRandom random_;
    Channel left_, right_;
    Drift density_;  // showers come and go a little
};

}  // namespace tendel

#pragma once

#include "sound/Bursts.h"
#include "sound/Filters.h"
#include "sound/NoiseChannel.h"
#include "sound/SoundSource.h"

namespace tendel {

// The rumble of the flames, and wood that crackles now and then and sometimes in bursts.
class FireplaceSource final : public SoundSource {
public:
    struct Crackles : Bursts {
        OnePoleHighPass highPass;
        OnePoleLowPass lowPass;

        float next(float chance, float sampleRate, SoundRandom& random);
    };

    FireplaceSource(double sampleRate, std::uint64_t seed);
    void render(float* left, float* right, std::size_t frames) override;

private:
    struct Channel {
        NoiseChannel noise;
        OnePoleLowPass filter;
        Crackles crackles;
    };

    float next(Channel& channel, float glow, float chance);

    float sampleRate_;
    SoundRandom random_;
    Channel left_, right_;
    Drift drift_;        // of the rumble
    int burstLeft_ = 0;  // samples
};

}  // namespace tendel

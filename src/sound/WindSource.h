#pragma once

#include "sound/Filters.h"
#include "sound/NoiseChannel.h"
#include "sound/Ramp.h"
#include "sound/SoundSource.h"
#include "sound/Swell.h"

namespace tendel {

// Wind that rises in gusts, never stands still and whistles softly where it is strong.
class WindSource final : public SoundSource {
public:
    WindSource(double sampleRate, std::uint64_t seed);
    void render(float* left, float* right, std::size_t frames) override;

private:
    struct Channel {
        NoiseChannel noise;
        BandPass band;     // the air
        BandPass whistle;  // an edge somewhere in it
        Drift center;      // of the band, as tuning
        Drift whistleCenter;
        Drift flutter;  // of the strength
        Ramp bandGain, whistleGain;

        Channel(double sampleRate, double lower, double upper);
        void aim(SoundRandom& random, float gust, float scale);
        float next(SoundRandom& random);
    };

    void blow();

    double sampleRate_;
    SoundRandom random_;
    Channel left_, right_;
    Swell longGust_{.shortest = 9, .longest = 19, .lowest = 0.5F};
    Swell shortGust_{.shortest = 2.5F, .longest = 6, .lowest = 0.2F};
    int sample_ = 0;
};

}  // namespace tendel

#pragma once

#include "sound/Filters.h"
#include "sound/NoiseChannel.h"
#include "sound/Ramp.h"
#include "sound/SoundSource.h"
#include "sound/Swell.h"

namespace tendel {

// Waves that roll in at uneven intervals, from one side or the other; on a crest the foam hisses
// and drains away slower than it came.
class OceanSource final : public SoundSource {
public:
    using Swell = tendel::Swell;

    OceanSource(double sampleRate, std::uint64_t seed);
    void render(float* left, float* right, std::size_t frames) override;

private:
    struct Channel {
        NoiseChannel noise{NoiseChannel::Color::pink};
        OnePoleLowPass filter;      // under it the body of the water, over it the foam
        OnePoleHighPass subsonic;   // takes away what only moves the loudspeaker
        OnePoleLowPass foamFilter;  // takes the edge off the foam
        float foam = 0;
        Ramp bodyGain, foamGain;

        float next(SoundRandom& random);
    };

    void roll();
    void aim(Channel& channel, float surge) const;

    double sampleRate_;
    SoundRandom random_;
    Channel left_, right_;
    Swell mainSwell_{.shortest = 6.5F, .longest = 15, .lowest = 0.5F};
    Swell smallSwell_{.shortest = 3.5F, .longest = 6.5F, .lowest = 0.3F};
    Drift side_;       // seconds by which the waves reach the right ear later
    float foamDrain_;  // what is left of the foam a control step later
    int sample_ = 0;
};

}  // namespace tendel

#pragma once

#include "sound/NoiseChannel.h"
#include "sound/SoundSource.h"

namespace tendel {

// Brown, pink or white noise; left and right have nothing in common.
class NoiseSource final : public SoundSource {
public:
    NoiseSource(NoiseChannel::Color color, std::uint64_t seed);
    void render(float* left, float* right, std::size_t frames) override;

private:
    SoundRandom random_;
    NoiseChannel leftNoise_, rightNoise_;
};

}  // namespace tendel

#include "sound/SoundSource.h"

#include "sound/AmbientSource.h"
#include "sound/FanSource.h"
#include "sound/FireplaceSource.h"
#include "sound/LargeHall.h"
#include "sound/NoiseSource.h"
#include "sound/OceanSource.h"
#include "sound/RainSource.h"
#include "sound/WindSource.h"

namespace tendel {

namespace {

class AmbientInLargeHall final : public SoundSource {
public:
    AmbientInLargeHall(double sampleRate, std::uint64_t seed)
        : source_(sampleRate, seed), hall_(sampleRate) {}
    void render(float* left, float* right, std::size_t frames) override {
        source_.render(left, right, frames);
        hall_.process(left, right, frames);
        for (std::size_t i = 0; i < frames; ++i) {
            left[i] = softClip(left[i], knee);
            right[i] = softClip(right[i], knee);
        }
    }

private:
    // Bent tones would be heard as others: only what hardly ever comes is.
    static constexpr float knee = 0.85F;

    AmbientSource source_;
    LargeHall hall_;
};

}  // namespace

std::unique_ptr<SoundSource> makeSource(FocusSound sound, double sampleRate, std::uint64_t seed) {
    switch (sound) {
        case FocusSound::brown:
            return std::make_unique<NoiseSource>(NoiseChannel::Color::brown, seed);
        case FocusSound::pink:
            return std::make_unique<NoiseSource>(NoiseChannel::Color::pink, seed);
        case FocusSound::white:
            return std::make_unique<NoiseSource>(NoiseChannel::Color::white, seed);
        case FocusSound::ocean:
            return std::make_unique<OceanSource>(sampleRate, seed);
        case FocusSound::wind:
            return std::make_unique<WindSource>(sampleRate, seed);
        case FocusSound::rain:
            return std::make_unique<RainSource>(sampleRate, seed);
        case FocusSound::fireplace:
            return std::make_unique<FireplaceSource>(sampleRate, seed);
        case FocusSound::fan:
            return std::make_unique<FanSource>(sampleRate, seed);
        case FocusSound::ambient:
            return std::make_unique<AmbientInLargeHall>(sampleRate, seed);
    }
    return nullptr;
}

}  // namespace tendel

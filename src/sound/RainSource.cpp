#include "sound/RainSource.h"

#include <algorithm>

namespace tendel {

namespace {

constexpr double washCutOff = 500;
constexpr double dropsCutOff = 1500;
constexpr float dropsPerSecond = 38;  // and channel
constexpr Bursts::Kind drop{.loudest = 0.42F, .shortest = 0.0008F, .longest = 0.007F};
constexpr float loudness = 1.1F;  // brings it to that of the noises

}  // namespace

float RainSource::Drops::next(float chance, float sampleRate, SoundRandom& random) {
    mayStart(chance, drop, sampleRate, random);
    if (level == 0) {
        filter.lowPass.output = 0;
        return 0;
    }
    return filter.next(Bursts::next(random));
}

RainSource::RainSource(double sampleRate, std::uint64_t seed)
    : sampleRate_(static_cast<float>(sampleRate)),
      random_{seed},
      density_{.range = {0.78F, 1.F}, .period = 7, .sampleRate = sampleRate_} {
    for (Channel* channel : {&left_, &right_}) {
        channel->filter = {washCutOff, sampleRate};
        channel->drops.filter = {dropsCutOff, sampleRate};
    }
}

float RainSource::next(Channel& channel, float density) {
    const float n = channel.noise.next(random_) * density * loudness;
    const float lp = channel.filter.next(n);
    const float chance = dropsPerSecond * density / sampleRate_;
    const float d = channel.drops.next(chance, sampleRate_, random_) * loudness;
    return std::clamp((d + (n - lp) * 0.9F) * 1.4F, -1.F, 1.F);
}

void RainSource::render(float* left, float* right, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        const float density = density_.next(random_);
        left[i] = next(left_, density);
        right[i] = next(right_, density);
    }
}

}  // namespace tendel

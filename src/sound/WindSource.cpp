#include "sound/WindSource.h"

#include <algorithm>

namespace tendel {

namespace {

constexpr float bandDamping = 0.9F;
constexpr float whistleDamping = 0.09F;
constexpr float loudness = 2.1F;  // brings it to that of the noises

Drift centerDrift(double lower, double upper, float period, double sampleRate) {
    return {.range = {BandPass::tuning(lower, sampleRate), BandPass::tuning(upper, sampleRate)},
            .period = period,
            .sampleRate = static_cast<float>(sampleRate / controlFrames)};
}

}  // namespace

WindSource::Channel::Channel(double sampleRate, double lower, double upper)
    : center(centerDrift(lower, upper, 3.5F, sampleRate)),
      whistleCenter(centerDrift(2.1 * lower, 1.9 * upper, 2.6F, sampleRate)),
      flutter{.range = {0.72F, 1.F},
              .period = 0.28F,
              .sampleRate = static_cast<float>(sampleRate / controlFrames)} {
    band.damping = bandDamping;
    whistle.damping = whistleDamping;
}

void WindSource::Channel::aim(SoundRandom& random, float gust, float scale) {
    // A stronger wind sounds higher too.
    band.frequency = center.next(random) * (0.75F + 0.6F * gust);
    whistle.frequency = whistleCenter.next(random) * (0.85F + 0.3F * gust);
    const float strength = flutter.next(random) * scale;
    bandGain.aim(strength * (1.4F + 4.6F * gust) * bandDamping);
    whistleGain.aim(strength * 8.F * gust * gust * whistleDamping);
}

float WindSource::Channel::next(SoundRandom& random) {
    const float n = noise.next(random);
    return bandGain.next() * band.next(n) + whistleGain.next() * whistle.next(n);
}

WindSource::WindSource(double sampleRate, std::uint64_t seed)
    : sampleRate_(sampleRate),
      random_{seed},
      left_(sampleRate, 190, 470),
      right_(sampleRate, 210, 520) {
    longGust_.start(random_, sampleRate);
    shortGust_.start(random_, sampleRate);
}

void WindSource::blow() {
    longGust_.advance(random_, sampleRate_, controlFrames);
    shortGust_.advance(random_, sampleRate_, controlFrames);
    const float gust = 0.7F * longGust_.value() + 0.3F * shortGust_.value();
    const float scale = loudness * whiteNoiseScale(sampleRate_);
    left_.aim(random_, gust, scale);
    right_.aim(random_, gust, scale);
}

void WindSource::render(float* left, float* right, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        if (sample_ == 0) blow();
        sample_ = (sample_ + 1) % controlFrames;
        left[i] = softClip(left_.next(random_));
        right[i] = softClip(right_.next(random_));
    }
}

}  // namespace tendel

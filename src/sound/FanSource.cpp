#include "sound/FanSource.h"

#include <algorithm>

#include "sound/FastSine.h"

namespace tendel {

namespace {

constexpr double airCutOff = 500;
constexpr double slowestBlade = 86;  // Hz
constexpr double fastestBlade = 89;
constexpr float pulseDepth = 0.12F;  // how much each blade swells the air
constexpr float air = 3.6F;
constexpr float breath = 0.33F;  // air above the cut-off

}  // namespace

FanSource::FanSource(double sampleRate, std::uint64_t seed)
    : random_{seed}, air_(air * whiteNoiseScale(sampleRate)) {
    const auto rate = static_cast<float>(sampleRate);
    blade_ = {.range = {static_cast<float>(slowestBlade / sampleRate),
                        static_cast<float>(fastestBlade / sampleRate)},
              .period = 5,
              .sampleRate = rate};
    hum_ = {.range = {0.043F, 0.073F}, .period = 3, .sampleRate = rate};
    left_.filter = {airCutOff, sampleRate};
    right_.filter = {airCutOff, sampleRate};
}

float FanSource::nextAir(Channel& channel, float pulse) {
    const float n = channel.noise.next(random_);
    const float lp = channel.filter.next(n);
    return air_ * pulse * lp + breath * (n - lp);
}

void FanSource::render(float* left, float* right, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        phase_ += blade_.next(random_);
        if (phase_ >= 1) phase_ -= 1;
        const float twice = phase_ * 2 - (phase_ >= 0.5F ? 1.F : 0.F);
        const float fundamental = fastSine(phase_);
        const float octave = fastSine(twice);
        const float hum = hum_.next(random_);
        const float pulse = 1 + pulseDepth * fundamental;
        // The octave reaches the ears turned about: the hum is wide, and whole in mono.
        const float tone = hum * fundamental;
        const float edge = 0.35F * hum * octave;
        left[i] = softClip(nextAir(left_, pulse) + tone + edge);
        right[i] = softClip(nextAir(right_, pulse) + tone + 0.4F * edge);
    }
}

}  // namespace tendel

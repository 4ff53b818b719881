#include "sound/FireplaceSource.h"

#include <algorithm>

namespace tendel {

namespace {

constexpr double rumbleCutOff = 180;
constexpr double crackleHighPass = 400;
constexpr double crackleLowPass = 2000;
constexpr float burstsPerSecond = 0.5F;
constexpr float cracklesPerSecondInABurst = 35;
constexpr float cracklesPerSecond = 3;
constexpr Bursts::Kind crackle{
    .loudest = 1.45F, .rarity = 2.5F, .shortest = 0.0006F, .longest = 0.007F};
constexpr float loudness = 1.27F;  // brings it to that of the noises

}  // namespace

float FireplaceSource::Crackles::next(float chance, float sampleRate, SoundRandom& random) {
    mayStart(chance, crackle, sampleRate, random);
    if (level == 0) {
        // What still rings of the last one is let go before it becomes subnormal.
        highPass.lowPass.output = 0;
        if (std::abs(lowPass.output) < 1e-6F) return lowPass.output = 0;
        return lowPass.next(0);
    }
    return lowPass.next(highPass.next(Bursts::next(random)));
}

FireplaceSource::FireplaceSource(double sampleRate, std::uint64_t seed)
    : sampleRate_(static_cast<float>(sampleRate)), random_{seed} {
    const float scale = whiteNoiseScale(sampleRate);
    drift_ = {.range = {4.F * scale, 6.8F * scale}, .period = 1.3F, .sampleRate = sampleRate_};
    for (Channel* channel : {&left_, &right_}) {
        channel->filter = {rumbleCutOff, sampleRate};
        channel->crackles.highPass = {crackleHighPass, sampleRate};
        channel->crackles.lowPass = {crackleLowPass, sampleRate};
    }
}

float FireplaceSource::next(Channel& channel, float g, float chance) {
    const float lp = channel.filter.next(channel.noise.next(random_));
    const float k = channel.crackles.next(chance, sampleRate_, random_);
    return std::clamp((k + g * lp) * loudness * 1.2F, -1.F, 1.F);
}

void FireplaceSource::render(float* left, float* right, std::size_t frames) {
    const float burstChance = burstsPerSecond / sampleRate_;
    const float quietChance = cracklesPerSecond / sampleRate_;
    const float crackleChance = cracklesPerSecondInABurst / sampleRate_;
    for (std::size_t i = 0; i < frames; ++i) {
        if (burstLeft_ >= 1)
            --burstLeft_;
        else if (random_.uniform() < burstChance)
            burstLeft_ = static_cast<int>(sampleRate_ * random_.between(0.15F, 0.6F));
        const float chance = burstLeft_ >= 1 ? crackleChance : quietChance;
        const float g = drift_.next(random_);
        left[i] = next(left_, g, chance);
        right[i] = next(right_, g, chance);
    }
}

}  // namespace tendel

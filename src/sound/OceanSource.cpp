#include "sound/OceanSource.h"

#include <algorithm>
#include <cmath>

namespace tendel {

namespace {

constexpr double filterCutOff = 400;
constexpr double subsonicCutOff = 70;
constexpr double foamCutOff = 5000;
constexpr float foamDrainSeconds = 1.9F;
constexpr float loudness = 1.48F;  // brings it to that of the noises

// A swell as it is at one ear, a little before or after.
float heard(const Swell& swell, float later) {
    Swell there = swell;
    there.phase -= later * swell.step;
    return there.value();
}

}  // namespace

OceanSource::OceanSource(double sampleRate, std::uint64_t seed)
    : sampleRate_(sampleRate),
      random_{seed},
      side_{.range = {-0.35F, 0.35F},
            .period = 9,
            .sampleRate = static_cast<float>(sampleRate / controlFrames)},
      foamDrain_(std::exp(-controlFrames / (foamDrainSeconds * static_cast<float>(sampleRate)))) {
    for (Channel* channel : {&left_, &right_}) {
        channel->filter = {filterCutOff, sampleRate};
        channel->subsonic = {subsonicCutOff, sampleRate};
        channel->foamFilter = {foamCutOff, sampleRate};
    }
    mainSwell_.start(random_, sampleRate);
    smallSwell_.start(random_, sampleRate);
}

float OceanSource::Channel::next(SoundRandom& random) {
    const float n = noise.next(random);
    const float body = filter.next(n);
    return bodyGain.next() * subsonic.next(body) + foamGain.next() * foamFilter.next(n - body);
}

void OceanSource::aim(Channel& channel, float surge) const {
    const float crest = std::max(surge - 0.35F, 0.F) / 0.65F;
    channel.foam = std::max(crest * crest, channel.foam * foamDrain_);
    channel.bodyGain.aim(loudness * (0.8F + 1.9F * surge * surge));
    channel.foamGain.aim(loudness * (0.3F + 0.4F * surge + 2.F * channel.foam));
}

void OceanSource::roll() {
    mainSwell_.advance(random_, sampleRate_, controlFrames);
    smallSwell_.advance(random_, sampleRate_, controlFrames);
    const float later = side_.next(random_) * static_cast<float>(sampleRate_);
    const auto surge = [&](float shift) {
        return 0.75F * heard(mainSwell_, shift) + 0.25F * heard(smallSwell_, shift);
    };
    aim(left_, surge(-later / 2));
    aim(right_, surge(later / 2));
}

void OceanSource::render(float* left, float* right, std::size_t frames) {
    for (std::size_t i = 0; i < frames; ++i) {
        if (sample_ == 0) roll();
        sample_ = (sample_ + 1) % controlFrames;
        left[i] = softClip(left_.next(random_));
        right[i] = softClip(right_.next(random_));
    }
}

}  // namespace tendel

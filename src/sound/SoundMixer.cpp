#include "sound/SoundMixer.h"

#include <algorithm>

#include "sound/FlushDenormals.h"

namespace tendel {

namespace {

constexpr double fadeInSeconds = 0.6;  // after an interruption

}  // namespace

void SoundMixer::reset(double sampleRate) {
    while (added_.pop()) {
    }
    count_ = 0;
    hasRendered_ = false;
    fadeInFrames_ = static_cast<std::uint32_t>(sampleRate * fadeInSeconds);
    volumeRamp_ = GainRamp(volume_.aim().target);
    limiter_ = Limiter(sampleRate);
}

void SoundMixer::begin() {
    // At the very first the voices come in by themselves.
    if (hasRendered_) volumeRamp_.restart(fadeInFrames_);
}

void SoundMixer::render(float* left, float* right, std::size_t frames) {
    const FlushDenormals flushDenormals;
    hasRendered_ = true;
    takeAdded();
    volumeRamp_.follow(volume_.aim());
    for (std::size_t done = 0; done < frames; done += blockFrames)
        renderBlock(left + done, right + done, std::min(blockFrames, frames - done));
    limiter_.process(left, right, frames);
}

void SoundMixer::takeAdded() {
    while (count_ < voices_.size()) {
        const auto entry = added_.pop();
        if (!entry) break;
        voices_[count_++] = *entry;
    }
}

void SoundMixer::renderBlock(float* left, float* right, std::size_t frames) {
    std::fill_n(left, frames, 0.0F);
    std::fill_n(right, frames, 0.0F);
    addVoices(Bus::sounds, left, right, frames);
    volumeRamp_.apply(left, right, frames);
    addVoices(Bus::chimes, left, right, frames);
}

void SoundMixer::addVoices(Bus bus, float* left, float* right, std::size_t frames) {
    for (std::size_t v = 0; v < count_;) {
        if (voices_[v].bus != bus) {
            ++v;
        } else if (!voices_[v].voice->render(voiceLeft_.data(), voiceRight_.data(), frames)) {
            voices_[v] = voices_[--count_];
        } else {
            for (std::size_t i = 0; i < frames; ++i) {
                left[i] += voiceLeft_[i];
                right[i] += voiceRight_[i];
            }
            ++v;
        }
    }
}

}  // namespace tendel

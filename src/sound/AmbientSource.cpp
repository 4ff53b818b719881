#include "sound/AmbientSource.h"

#include <algorithm>

namespace tendel {

namespace {

constexpr double stepSeconds = 0.62;
// How likely a note is in each step: the first and the fifth carry, the rest is sparse.
constexpr std::array steps{0.95F, 0.12F, 0.5F, 0.2F, 0.8F, 0.1F, 0.4F, 0.25F};
constexpr int stepsPerBass = 16;
// D major pentatonic, equal temperament to A = 440 Hz.
constexpr std::array tones{220.00, 246.94, 293.66, 329.63, 369.99, 440.00, 493.88, 587.33, 659.26};
constexpr std::array basses{73.42, 98.00, 82.41, 110.00, 61.74};

constexpr double pluckAttack = 0.018;  // seconds
constexpr double pluckRelease = 8;     // seconds to −60 dB
constexpr double bassAttack = 1.6;
constexpr double bassRelease = 40;
constexpr float loudness = 3.8F;  // brings it to that of the noises

constexpr std::size_t mostVoices = 48;

}  // namespace

AmbientSource::AmbientSource(double sampleRate, std::uint64_t seed)
    : sampleRate_(sampleRate),
      samplesPerStep_(static_cast<int>(sampleRate * stepSeconds)),
      random_{seed},
      toneIndex_(static_cast<int>(random_.uniform() * tones.size())) {
    voices_.reserve(mostVoices);
}

void AmbientSource::start(const Voice& voice) {
    // With too many this one is left out rather than another cut off.
    if (voices_.size() < mostVoices) voices_.push_back(voice);
}

void AmbientSource::playBass() {
    // Never the same twice in a row.
    const auto others = static_cast<float>(basses.size() - 1);
    bassIndex_ = (bassIndex_ + 1 + static_cast<int>(random_.uniform() * others)) %
                 static_cast<int>(basses.size());
    const double frequency = basses[static_cast<std::size_t>(bassIndex_)];
    const float peak = loudness * random_.between(0.055F, 0.07F);
    // The partials make it heard on small speakers too.
    const auto partial = [&](double times, float of, double pan) {
        start({SineVoice::at(frequency * times, sampleRate_, peak * of, bassAttack,
                             bassRelease / times, pan),
               true});
    };
    partial(1, 1, 0.5);
    partial(2.003, 0.5F, 0.3);
    partial(2.997, 0.2F, 0.7);
}

void AmbientSource::playNote() {
    // A walk of one to three tones that turns back at the ends, so that it is never the same tone.
    const int size = static_cast<int>(tones.size());
    const int stride = 1 + static_cast<int>(random_.uniform() * random_.uniform() * 4);
    const bool up = random_.uniform() < 0.5F ? toneIndex_ + stride < size : toneIndex_ < stride;
    toneIndex_ = std::clamp(toneIndex_ + (up ? stride : -stride), 0, size - 1);
    const double frequency = tones[static_cast<std::size_t>(toneIndex_)];
    // Higher notes are quieter, and over many that still ring a softer one is enough.
    const float height = static_cast<float>(toneIndex_) / static_cast<float>(size);
    float ringing = 0;
    for (const Voice& voice : voices_)
        if (!voice.isBass) ringing += voice.level;
    const float peak =
        loudness * random_.between(0.15F, 0.22F) * (1 - 0.35F * height) / (1 + 2 * ringing);
    // They take turns to the left and to the right.
    const float side = notesStarted_ % 2 == 0 ? -1 : 1;
    const double pan = 0.5 + side * random_.between(0.08F, 0.35F);
    start({SineVoice::at(frequency, sampleRate_, peak, pluckAttack, pluckRelease, pan)});
    start({SineVoice::at(frequency * 2.001, sampleRate_, peak * 0.22F, pluckAttack / 2,
                         pluckRelease / 3, pan)});
    start({SineVoice::at(frequency * 3.004, sampleRate_, peak * 0.07F, pluckAttack / 2,
                         pluckRelease / 6, pan)});
    ++notesStarted_;
    lastNoteStart_ = step_;
}

void AmbientSource::takeStep() {
    if (step_ % stepsPerBass == 0) playBass();
    const bool isFirst = !lastNoteStart_;
    // After a while without a note one is due.
    const bool isDue = lastNoteStart_ && step_ - *lastNoteStart_ > 4;
    const float chance = steps[static_cast<std::size_t>(step_) % steps.size()];
    if (random_.uniform() < chance || isFirst || isDue) playNote();
    ++step_;
}

void AmbientSource::render(float* left, float* right, std::size_t frames) {
    std::fill_n(left, frames, 0.F);
    std::fill_n(right, frames, 0.F);
    for (std::size_t done = 0; done < frames;) {
        if (sample_ == 0) takeStep();
        const std::size_t length =
            std::min(frames - done, static_cast<std::size_t>(samplesPerStep_ - sample_));
        for (Voice& voice : voices_)
            voice.addTo(left + done, right + done, length);
        std::erase_if(voices_, [](const Voice& voice) { return !voice.isSounding(); });
        sample_ = (sample_ + static_cast<int>(length)) % samplesPerStep_;
        done += length;
    }
}

}  // namespace tendel

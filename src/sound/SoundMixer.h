#pragma once

#include <array>

#include "sound/AudioOutput.h"
#include "sound/Limiter.h"
#include "sound/SingleProducerQueue.h"
#include "sound/SoundVoiceRenderer.h"

namespace tendel {

// Sums up the voices: the sounds under the master volume, the chimes over them, and the limiter
// last. The main thread adds voices, the audio thread drops those that are finished.
class SoundMixer : public AudioRenderer {
public:
    enum class Bus { sounds, chimes };

    // Main thread, while nothing renders: as if it were new. The voices that it has are forgotten.
    void reset(double sampleRate);
    // Main thread. The voice must stay until it is finished or the mixer is reset. False when
    // there are more than `maximumVoices`.
    bool add(SoundVoiceRenderer& voice, Bus bus) { return added_.push({&voice, bus}); }
    // Main thread: of the sounds.
    void setVolume(VoiceGain::Aim aim) { volume_.moveTo(aim); }

    void begin() override;
    void render(float* left, float* right, std::size_t frames) override;

    static constexpr std::size_t maximumVoices = 32;

private:
    struct Entry {
        SoundVoiceRenderer* voice = nullptr;
        Bus bus = Bus::sounds;
    };

    // What is rendered at once fits the processor's nearest cache.
    static constexpr std::size_t blockFrames = 256;

    void takeAdded();
    void renderBlock(float* left, float* right, std::size_t frames);
    void addVoices(Bus bus, float* left, float* right, std::size_t frames);

    SingleProducerQueue<Entry, maximumVoices> added_;
    VoiceGain volume_{{1, 0}};

    // The audio thread's.
    std::array<Entry, maximumVoices> voices_{};
    std::size_t count_ = 0;
    GainRamp volumeRamp_{1};
    std::uint32_t fadeInFrames_ = 0;
    bool hasRendered_ = false;
    Limiter limiter_{48000};
    std::array<float, blockFrames> voiceLeft_{}, voiceRight_{};
};

}  // namespace tendel

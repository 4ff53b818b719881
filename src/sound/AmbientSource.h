#pragma once

#include <array>
#include <optional>
#include <vector>

#include "sound/SineVoice.h"
#include "sound/SoundRandom.h"
#include "sound/SoundSource.h"

namespace tendel {

// A slow melody of soft plucked notes over long basses that never repeats, without its hall: a walk
// up and down a pentatonic scale, where every note goes with every bass. Many notes at once may
// exceed 1.
class AmbientSource final : public SoundSource {
public:
    struct Voice : SineVoice {
        bool isBass = false;
    };

    AmbientSource(double sampleRate, std::uint64_t seed);
    void render(float* left, float* right, std::size_t frames) override;

private:
    void takeStep();
    void playBass();
    void playNote();
    void start(const Voice& voice);

    double sampleRate_;
    int samplesPerStep_;
    SoundRandom random_;
    std::vector<Voice> voices_;  // never grows while it plays
    int sample_ = 0;             // of the step
    int step_ = 0;
    int toneIndex_;
    int bassIndex_ = 0;
    int notesStarted_ = 0;
    std::optional<int> lastNoteStart_;  // step
};

}  // namespace tendel

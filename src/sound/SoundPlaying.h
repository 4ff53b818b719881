#pragma once

#include <map>

#include "model/SoundMix.h"

namespace tendel {

// Sounds and how loud each is to be, 0–1.
using SoundLevels = std::map<FocusSound, float>;

// Plays a mix of sounds; the sound engine implements it.
class SoundPlaying {
public:
    virtual ~SoundPlaying() = default;
    // From now on exactly these; what is not among them fades out over `fade` seconds, what is new
    // fades in.
    virtual void play(const SoundLevels& levels, double fade) = 0;
};

}  // namespace tendel

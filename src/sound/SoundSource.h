#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "model/SoundMix.h"

namespace tendel {

// Makes one sound, sample by sample. After it is made it belongs to the thread that renders, where
// it allocates nothing, locks nothing and calls nothing of the system.
class SoundSource {
public:
    virtual ~SoundSource() = default;
    // Writes the next `frames` samples of each channel, within −1 to 1.
    virtual void render(float* left, float* right, std::size_t frames) = 0;
};

// The source of one of the nine sounds; the same seed gives the same samples. `sampleRate` in Hz.
// "ambient" comes with its large hall.
std::unique_ptr<SoundSource> makeSource(FocusSound sound, double sampleRate, std::uint64_t seed);

// A bell-like chime of our own under a system sound's name ("Glass", "Hero"); it is silent for good
// after `chimeSeconds`. Null for any other name.
std::unique_ptr<SoundSource> makeChime(std::string_view name, double sampleRate);
inline constexpr double chimeSeconds = 3;

}  // namespace tendel

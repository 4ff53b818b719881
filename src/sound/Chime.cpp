#include "sound/Chime.h"

#include <algorithm>
#include <array>

namespace tendel {

namespace {

constexpr double attack = 0.006;  // seconds: a soft mallet

// A thin bowl: its bending modes lie far apart, and the high ones die soon.
constexpr std::array glass{
    ChimePartial{1174.7, 0.268F, 1.90, 0.45}, ChimePartial{1177.9, 0.080F, 1.70, 0.60},
    ChimePartial{3159.9, 0.101F, 0.90, 0.35}, ChimePartial{5860.0, 0.040F, 0.40, 0.65},
    ChimePartial{9210.0, 0.013F, 0.18, 0.50},
};
// Two small bells a fourth apart, the second the higher: come back.
constexpr std::array hero{
    ChimePartial{587.3, 0.230F, 1.60, 0.40, 0.00},  ChimePartial{588.6, 0.071F, 1.60, 0.60, 0.00},
    ChimePartial{1621.0, 0.089F, 0.80, 0.35, 0.00}, ChimePartial{3172.0, 0.035F, 0.35, 0.45, 0.00},
    ChimePartial{784.0, 0.266F, 1.80, 0.55, 0.17},  ChimePartial{785.9, 0.071F, 1.80, 0.40, 0.17},
    ChimePartial{2164.0, 0.089F, 0.90, 0.65, 0.17}, ChimePartial{4234.0, 0.035F, 0.35, 0.55, 0.17},
};

}  // namespace

Chime::Chime(std::span<const ChimePartial> partials, double sampleRate) {
    for (const ChimePartial& partial : partials)
        strikes_.push_back({SineVoice::at(partial.hertz, sampleRate, partial.peak, attack,
                                          partial.decay, partial.pan),
                            static_cast<std::size_t>(partial.start * sampleRate)});
}

void Chime::render(float* left, float* right, std::size_t frames) {
    std::fill_n(left, frames, 0.F);
    std::fill_n(right, frames, 0.F);
    for (Strike& strike : strikes_) {
        const std::size_t silent = std::min(strike.wait, frames);
        strike.wait -= silent;
        if (strike.voice.isSounding())
            strike.voice.addTo(left + silent, right + silent, frames - silent);
    }
}

std::unique_ptr<SoundSource> makeChime(std::string_view name, double sampleRate) {
    if (name == "Glass") return std::make_unique<Chime>(glass, sampleRate);
    if (name == "Hero") return std::make_unique<Chime>(hero, sampleRate);
    return nullptr;
}

}  // namespace tendel

#pragma once

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string_view>

namespace tendel {

// The sounds that can play while the user focuses or takes a break.
enum class FocusSound { brown, pink, white, ocean, wind, rain, fireplace, fan, ambient };

inline constexpr std::array<std::string_view, 9> focusSoundNames{
    "brown", "pink", "white", "ocean", "wind", "rain", "fireplace", "fan", "ambient"};

constexpr std::string_view rawValue(FocusSound sound) {
    return focusSoundNames[static_cast<std::size_t>(sound)];
}

constexpr std::optional<FocusSound> focusSound(std::string_view raw) {
    for (std::size_t i = 0; i < focusSoundNames.size(); ++i)
        if (focusSoundNames[i] == raw) return static_cast<FocusSound>(i);
    return std::nullopt;
}

// Which sounds play together, and how loud each is. The default is the empty mix: silence.
struct SoundMix {
    std::map<FocusSound, double> levels;  // chosen levels, kept while their sound is off
    std::set<FocusSound> on;

    friend bool operator==(const SoundMix&, const SoundMix&) = default;
};

}  // namespace tendel

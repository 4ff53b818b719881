#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace tendel {

// The exercises for which a figure can be shown, by their raw texts.
enum class ExerciseAnimation {
    eyes,
    neck,
    shoulders,
    chin,
    back,
    wrists,
    sides,
    standing,
    walking,
    calves,
    squats,
    breathing
};

inline constexpr std::array<std::string_view, 12> exerciseAnimationNames{
    "eyes",  "neck",     "shoulders", "chin",   "back",   "wrists",
    "sides", "standing", "walking",   "calves", "squats", "breathing"};

constexpr std::string_view rawValue(ExerciseAnimation animation) {
    return exerciseAnimationNames[static_cast<std::size_t>(animation)];
}

constexpr std::optional<ExerciseAnimation> exerciseAnimation(std::string_view raw) {
    for (std::size_t i = 0; i < exerciseAnimationNames.size(); ++i)
        if (exerciseAnimationNames[i] == raw) return static_cast<ExerciseAnimation>(i);
    return std::nullopt;
}

}  // namespace tendel

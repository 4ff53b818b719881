#pragma once

#include <optional>

#include <nlohmann/json_fwd.hpp>

#include "model/DailyGoal.h"
#include "model/FocusPlan.h"
#include "model/SoundMix.h"
#include "model/WorkingHours.h"

namespace tendel {

// The stored forms of the settings that have a structure. `decode` answers only when everything
// that the form needs is there and of its type; keys that it does not know make no difference.
nlohmann::json encode(const WorkingHours& hours);
nlohmann::json encode(const DailyGoal& goal);
nlohmann::json encode(const FocusPlan& plan);
nlohmann::json encode(const SoundMix& mix);

template <class T>
std::optional<T> decode(const nlohmann::json& stored);
template <>
std::optional<WorkingHours> decode(const nlohmann::json& stored);
template <>
std::optional<DailyGoal> decode(const nlohmann::json& stored);
template <>
std::optional<FocusPlan> decode(const nlohmann::json& stored);
template <>
std::optional<SoundMix> decode(const nlohmann::json& stored);
// A whole number that an int holds.
template <>
std::optional<int> decode(const nlohmann::json& stored);
template <>
std::optional<bool> decode(const nlohmann::json& stored);
template <>
std::optional<std::string> decode(const nlohmann::json& stored);
// An ISO 8601 text.
template <>
std::optional<Instant> decode(const nlohmann::json& stored);

// The member `key` of an object, decoded; nothing when it is missing or does not decode.
template <class T>
std::optional<T> member(const nlohmann::json& object, const char* key);

}  // namespace tendel

#include "storage/SettingCodecs.h"

#include <limits>

#include <nlohmann/json.hpp>

namespace tendel {

using nlohmann::json;

namespace {

json encodeTime(TimeOfDay time) {
    return {{"hour", time.hour}, {"minute", time.minute}};
}

std::optional<TimeOfDay> decodeTime(const json& stored) {
    const auto hour = member<int>(stored, "hour"), minute = member<int>(stored, "minute");
    if (!hour || !minute) return std::nullopt;
    return TimeOfDay{*hour, *minute};
}

const json& memberOrNull(const json& object, const char* key) {
    static const json missing;
    if (!object.is_object()) return missing;
    const auto found = object.find(key);
    return found == object.end() ? missing : *found;
}

}  // namespace

template <class T>
std::optional<T> member(const json& object, const char* key) {
    return decode<T>(memberOrNull(object, key));
}
template std::optional<int> member(const json&, const char*);
template std::optional<bool> member(const json&, const char*);
template std::optional<std::string> member(const json&, const char*);
template std::optional<Instant> member(const json&, const char*);

template <>
std::optional<int> decode(const json& stored) {
    if (!stored.is_number_integer()) return std::nullopt;
    using Limits = std::numeric_limits<int>;
    if (stored.is_number_unsigned() && stored.get<std::uint64_t>() > std::uint64_t(Limits::max()))
        return std::nullopt;
    const auto number = stored.get<std::int64_t>();
    if (number < Limits::min() || number > Limits::max()) return std::nullopt;
    return static_cast<int>(number);
}

template <>
std::optional<bool> decode(const json& stored) {
    if (!stored.is_boolean()) return std::nullopt;
    return stored.get<bool>();
}

template <>
std::optional<std::string> decode(const json& stored) {
    if (!stored.is_string()) return std::nullopt;
    return stored.get<std::string>();
}

template <>
std::optional<Instant> decode(const json& stored) {
    if (!stored.is_string()) return std::nullopt;
    return parseIso8601(stored.get_ref<const std::string&>());
}

json encode(const WorkingHours& hours) {
    return {{"start", encodeTime(hours.start)},
            {"end", encodeTime(hours.end)},
            {"workdays", hours.workdays}};
}

template <>
std::optional<WorkingHours> decode(const json& stored) {
    const auto start = decodeTime(memberOrNull(stored, "start"));
    const auto end = decodeTime(memberOrNull(stored, "end"));
    const json& workdays = memberOrNull(stored, "workdays");
    if (!start || !end || !workdays.is_array()) return std::nullopt;
    WorkingHours hours{.start = *start, .end = *end, .workdays = {}};
    for (const json& number : workdays) {
        const auto day = decode<int>(number);
        if (!day) return std::nullopt;
        hours.workdays.insert(*day);
    }
    return hours;
}

json encode(const DailyGoal& goal) {
    return {{"text", goal.text}, {"day", formatIso8601(goal.day)}, {"isDone", goal.isDone}};
}

template <>
std::optional<DailyGoal> decode(const json& stored) {
    const auto text = member<std::string>(stored, "text");
    const auto day = member<Instant>(stored, "day");
    const auto isDone = member<bool>(stored, "isDone");
    if (!text || !day || !isDone) return std::nullopt;
    return DailyGoal{*text, *day, *isDone};
}

json encode(const FocusPlan& plan) {
    json stored{{"focusMinutes", plan.focusMinutes}, {"breakMinutes", plan.breakMinutes}};
    if (plan.longBreakEvery) stored["longBreakEvery"] = *plan.longBreakEvery;
    return stored;
}

template <>
std::optional<FocusPlan> decode(const json& stored) {
    const auto focus = member<int>(stored, "focusMinutes");
    const auto pause = member<int>(stored, "breakMinutes");
    const auto rounds = member<int>(stored, "longBreakEvery");
    const bool hasOddRounds = !rounds && !memberOrNull(stored, "longBreakEvery").is_null();
    if (!focus || !pause || hasOddRounds) return std::nullopt;
    return FocusPlan{*focus, *pause, rounds};
}

json encode(const SoundMix& mix) {
    json levels = json::object(), on = json::array();
    for (const auto& [sound, level] : mix.levels)
        levels[std::string(rawValue(sound))] = level;
    for (const FocusSound sound : mix.on)
        on.push_back(rawValue(sound));
    return {{"levels", std::move(levels)}, {"on", std::move(on)}};
}

template <>
std::optional<SoundMix> decode(const json& stored) {
    const json& levels = memberOrNull(stored, "levels");
    const json& on = memberOrNull(stored, "on");
    if (!levels.is_object() || !on.is_array()) return std::nullopt;
    SoundMix mix;
    for (const auto& [name, level] : levels.items()) {
        const auto sound = focusSound(name);
        if (!sound || !level.is_number()) return std::nullopt;
        mix.levels[*sound] = level.get<double>();
    }
    for (const json& name : on) {
        const auto sound = focusSound(decode<std::string>(name).value_or(""));
        if (!sound) return std::nullopt;
        mix.on.insert(*sound);
    }
    return mix;
}

}  // namespace tendel

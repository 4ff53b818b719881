#include "storage/AppSettings.h"

#include <algorithm>

#include <nlohmann/json.hpp>

#include "storage/SettingCodecs.h"

namespace tendel {

using nlohmann::json;

namespace {

// The pane that shows before one was chosen.
constexpr auto firstSettingsPane = "alerts";

bool isIdleChoice(int minutes) {
    return minutes == 3 || minutes == 5 || minutes == 10 || minutes == 15;
}

// A setting that starts with `initial` and is stored under `key` as what `encoded` makes of it. A
// failed write was logged by the defaults, which try again.
template <class T, class Encode>
Setting<T> stored(Defaults& defaults, const char* key, T initial, Encode encoded) {
    return Setting<T>(std::move(initial), [&defaults, key, encoded](const T& value) {
        static_cast<void>(defaults.set(key, encoded(value)));
    });
}

// For what JSON knows by itself.
template <class T>
Setting<T> plain(Defaults& defaults, const char* key, T fallback) {
    return stored<T>(defaults, key, decode<T>(defaults.json(key)).value_or(std::move(fallback)),
                     [](const T& value) { return json(value); });
}

// For values with a structure.
template <class T>
Setting<T> encodedSetting(Defaults& defaults, const char* key, T fallback) {
    return stored<T>(defaults, key, decode<T>(defaults.json(key)).value_or(std::move(fallback)),
                     [](const T& value) { return encode(value); });
}

// For enumerations, by their raw texts.
template <class T>
Setting<T> named(Defaults& defaults, const char* key, std::optional<T> (*parse)(std::string_view),
                 T fallback) {
    const auto raw = defaults.text(key);
    return stored<T>(defaults, key, (raw ? parse(*raw) : std::nullopt).value_or(fallback),
                     [](T value) { return json(rawValue(value)); });
}

// An older version played one sound, under `olderKey`; its mix is that sound alone.
Setting<SoundMix> mix(Defaults& defaults, const char* key, const char* olderKey) {
    const auto older = defaults.text(olderKey);
    if (!defaults.contains(key) && older) {
        SoundMix migrated;
        if (const auto sound = focusSound(*older)) migrated.on.insert(*sound);
        static_cast<void>(defaults.set(key, encode(migrated)));
    }
    return encodedSetting(defaults, key, SoundMix{});
}

std::optional<AlertStyle> alertStyleNamed(std::string_view raw) {
    return raw == rawValue(AlertStyle::compact) ? AlertStyle::compact : AlertStyle::full;
}

}  // namespace

AppSettings::AppSettings(Defaults& defaults)
    : workingHours(encodedSetting(defaults, "workingHours", WorkingHours::standard())),
      showsMenuBarCountdown(plain(defaults, "showsMenuBarCountdown", false)),
      alertAutoHide(stored<AlertAutoHide>(
          defaults, "alertAutoHide",
          tendel::alertAutoHide(defaults.integer("alertAutoHide").value_or(30))
              .value_or(AlertAutoHide::after30Seconds),
          [](AlertAutoHide choice) { return json(static_cast<int>(choice)); })),
      alertStyle(named(defaults, "alertStyle", alertStyleNamed, AlertStyle::full)),
      snoozeMinutes(plain(defaults, "snoozeMinutes", 5)),
      dailyGoal(stored<std::optional<DailyGoal>>(
          defaults, "dailyGoal", decode<DailyGoal>(defaults.json("dailyGoal")),
          [](const std::optional<DailyGoal>& goal) { return goal ? encode(*goal) : json(); })),
      focusPlan(encodedSetting(defaults, "focusPlan", FocusPlan{})),
      showsFocusInNotch(plain(defaults, "showsFocusInNotch", true)),
      showsPausesInNotch(plain(defaults, "showsPausesInNotch", true)),
      hidesLivePillInFullScreen(plain(defaults, "hidesLivePillInFullScreen", false)),
      playsBreakEndSound(plain(defaults, "playsBreakEndSound", true)),
      countsAwayAsBreak(plain(defaults, "countsAwayAsBreak", true)),
      idleMinutes(stored<int>(
          defaults, "idleMinutes",
          [&] {
              const auto minutes = decode<int>(defaults.json("idleMinutes")).value_or(5);
              return isIdleChoice(minutes) ? minutes : 5;
          }(),
          [](int minutes) { return json(minutes); })),
      holdsAlertsWhenBusy(plain(defaults, "holdsAlertsWhenBusy", true)),
      hasCompletedSetup(plain(defaults, "hasCompletedSetup", false)),
      settingsPane(plain<std::string>(defaults, "settingsPane", firstSettingsPane)),
      statsRange(named(defaults, "statsRange", tendel::statsRange, StatsRange::week)),
      statsFilter(named(defaults, "statsFilter", tendel::statsFilter, StatsFilter::all)),
      soundVolume(stored<double>(defaults, "soundVolume",
                                 std::clamp(defaults.number("soundVolume").value_or(0.5), 0.0, 1.0),
                                 [](double volume) { return json(volume); })),
      focusMix(mix(defaults, "focusMix", "focusSound")),
      sharesUsage(plain(defaults, "sharesUsage", true)),
      breakMix(mix(defaults, "breakMix", "breakSound")) {}

}  // namespace tendel

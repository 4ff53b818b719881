#include "storage/AppSettings.h"

#include <gtest/gtest.h>

#include <string>

#include <nlohmann/json.hpp>

#include "Files.h"
#include "storage/SettingCodecs.h"

namespace tendel {
namespace {

using nlohmann::json;

// Hands each key to `visit` with its setting in both.
template <class Visit>
void forEach(const AppSettings& a, AppSettings& b, const Visit& visit) {
    visit("workingHours", a.workingHours, b.workingHours);
    visit("showsMenuBarCountdown", a.showsMenuBarCountdown, b.showsMenuBarCountdown);
    visit("alertAutoHide", a.alertAutoHide, b.alertAutoHide);
    visit("alertStyle", a.alertStyle, b.alertStyle);
    visit("snoozeMinutes", a.snoozeMinutes, b.snoozeMinutes);
    visit("dailyGoal", a.dailyGoal, b.dailyGoal);
    visit("focusPlan", a.focusPlan, b.focusPlan);
    visit("showsFocusInNotch", a.showsFocusInNotch, b.showsFocusInNotch);
    visit("showsPausesInNotch", a.showsPausesInNotch, b.showsPausesInNotch);
    visit("hidesLivePillInFullScreen", a.hidesLivePillInFullScreen, b.hidesLivePillInFullScreen);
    visit("playsBreakEndSound", a.playsBreakEndSound, b.playsBreakEndSound);
    visit("countsAwayAsBreak", a.countsAwayAsBreak, b.countsAwayAsBreak);
    visit("idleMinutes", a.idleMinutes, b.idleMinutes);
    visit("holdsAlertsWhenBusy", a.holdsAlertsWhenBusy, b.holdsAlertsWhenBusy);
    visit("hasCompletedSetup", a.hasCompletedSetup, b.hasCompletedSetup);
    visit("settingsPane", a.settingsPane, b.settingsPane);
    visit("statsRange", a.statsRange, b.statsRange);
    visit("statsFilter", a.statsFilter, b.statsFilter);
    visit("soundVolume", a.soundVolume, b.soundVolume);
    visit("focusMix", a.focusMix, b.focusMix);
    visit("sharesUsage", a.sharesUsage, b.sharesUsage);
    visit("breakMix", a.breakMix, b.breakMix);
}

template <class T>
json asJson(const T& value) {
    if constexpr (requires { encode(value); })
        return encode(value);
    else if constexpr (requires { encode(*value); })
        return value ? encode(*value) : json();
    else if constexpr (std::is_same_v<T, AlertAutoHide>)
        return static_cast<int>(value);
    else if constexpr (std::is_enum_v<T>)
        return rawValue(value);
    else
        return value;
}

// What a start with these defaults reads.
json settingsFrom(Defaults& defaults) {
    AppSettings settings(defaults);
    json all;
    forEach(settings, settings,
            [&](const char* key, const auto& setting, auto&) { all[key] = asJson(*setting); });
    return all;
}

const json fresh = json::parse(R"({
    "workingHours": {"start": {"hour": 9, "minute": 0}, "end": {"hour": 17, "minute": 0},
                     "workdays": [2, 3, 4, 5, 6]},
    "showsMenuBarCountdown": false, "alertAutoHide": 30, "alertStyle": "full", "snoozeMinutes": 5,
    "dailyGoal": null, "focusPlan": {"focusMinutes": 30, "breakMinutes": 5},
    "showsFocusInNotch": true, "showsPausesInNotch": true, "hidesLivePillInFullScreen": false,
    "playsBreakEndSound": true, "countsAwayAsBreak": true, "idleMinutes": 5,
    "holdsAlertsWhenBusy": true, "hasCompletedSetup": false, "settingsPane": "alerts",
    "statsRange": "week", "statsFilter": "all", "soundVolume": 0.5,
    "focusMix": {"levels": {}, "on": []}, "sharesUsage": true,
    "breakMix": {"levels": {}, "on": []}})");

const json chosen = json::parse(R"({
    "workingHours": {"start": {"hour": 22, "minute": 0}, "end": {"hour": 6, "minute": 30},
                     "workdays": []},
    "showsMenuBarCountdown": true, "alertAutoHide": 0, "alertStyle": "compact", "snoozeMinutes": 9,
    "dailyGoal": {"text": "Walk \"far\" \n ü", "day": "2026-03-02T00:00:00Z", "isDone": true},
    "focusPlan": {"focusMinutes": 45, "breakMinutes": 15, "longBreakEvery": 3},
    "showsFocusInNotch": false, "showsPausesInNotch": false, "hidesLivePillInFullScreen": true,
    "playsBreakEndSound": false, "countsAwayAsBreak": false, "idleMinutes": 10,
    "holdsAlertsWhenBusy": false, "hasCompletedSetup": true, "settingsPane": "about",
    "statsRange": "today", "statsFilter": "private", "soundVolume": 0.125,
    "focusMix": {"levels": {"brown": 0.25}, "on": ["ambient"]}, "sharesUsage": false,
    "breakMix": {"levels": {}, "on": ["ocean", "wind"]}})");

// Each setting goes to its own key at once, in a form that the next start reads back.
TEST(AppSettings, AreThereAtTheNextStart) {
    const test::TemporaryFolder folder;
    const auto file = folder.path / "defaults.json";
    Defaults source, defaults(file);
    for (const auto& [key, value] : chosen.items())
        ASSERT_TRUE(source.set(key, value));
    EXPECT_EQ(settingsFrom(source), chosen);
    AppSettings settings(defaults);
    forEach(AppSettings(source), settings,
            [](const char*, const auto& from, auto& to) { to.set(*from); });
    EXPECT_EQ(json::parse(contentOf(file)), chosen);
}

// Whatever is stored, each setting reads as something that makes sense, the others unharmed.
TEST(AppSettings, ReadWhatIsStoredOrTheDefault) {
    constexpr auto asStored = "", byDefault = "default";
    struct Case {
        std::string key;
        std::string stored;
        std::string reads;
    };
    const std::string hours = R"({"start":{"hour":8,"minute":30},"end":{"hour":6,"minute":0},)";
    const Case cases[] = {
        {"workingHours", hours + R"("workdays":[1,7],"more":1})", hours + R"("workdays":[1,7]})"},
        {"workingHours", hours + R"("workdays":["Monday"]})", byDefault},
        {"workingHours", hours + R"("workdays":7})", byDefault},
        {"workingHours", R"({"start":{"hour":8},"end":{"hour":9,"minute":0},"workdays":[]})",
         byDefault},
        {"alertAutoHide", "60", asStored},
        {"alertAutoHide", "45", byDefault},
        {"alertAutoHide", "\"10\"", byDefault},
        {"alertStyle", "\"Compact\"", byDefault},
        {"snoozeMinutes", "12.5", byDefault},
        {"snoozeMinutes", "99999999999", byDefault},
        {"dailyGoal", R"({"text":"Rest","day":"today","isDone":true})", byDefault},
        {"focusPlan", R"({"focusMinutes":50,"breakMinutes":10})", asStored},
        {"focusPlan", R"({"focusMinutes":50,"breakMinutes":10,"longBreakEvery":"4"})", byDefault},
        {"showsMenuBarCountdown", "\"true\"", byDefault},
        {"idleMinutes", "15", asStored},
        {"idleMinutes", "7", byDefault},
        {"statsRange", "\"year\"", byDefault},
        {"statsFilter", "\"private_\"", byDefault},
        {"soundVolume", "1.7", "1.0"},
        {"soundVolume", "-2", "0.0"},
        {"focusMix", R"({"levels":{"rain":0.5},"on":["hail"]})", byDefault},
        {"breakMix", R"({"levels":{"rain":"0.5"},"on":[]})", byDefault},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.key + " = " + each.stored);
        Defaults defaults;
        ASSERT_TRUE(defaults.set(each.key, json::parse(each.stored)));
        json expected = fresh;
        if (each.reads != byDefault)
            expected[each.key] = json::parse(each.reads == asStored ? each.stored : each.reads);
        EXPECT_EQ(settingsFrom(defaults), expected);
    }
}

TEST(AppSettings, TakesOverTheOneSoundOfOlderVersions) {
    const json rain = json::parse(R"({"levels":{},"on":["rain"]})");
    Defaults defaults;
    ASSERT_TRUE(defaults.set("focusSound", "rain"));
    ASSERT_TRUE(defaults.set("breakSound", "none"));
    EXPECT_EQ(settingsFrom(defaults)["breakMix"], fresh["breakMix"]);
    EXPECT_EQ(settingsFrom(defaults)["focusMix"], rain);
    EXPECT_EQ(defaults.json("focusMix"), rain);
    // Once there is a mix, the older key counts no more, whatever the mix is.
    ASSERT_TRUE(defaults.set("focusMix", "odd"));
    EXPECT_EQ(settingsFrom(defaults)["focusMix"], fresh["focusMix"]);
}

}  // namespace
}  // namespace tendel

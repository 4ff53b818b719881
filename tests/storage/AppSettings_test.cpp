#include "storage/AppSettings.h"

#include <gtest/gtest.h>

#include <string>

#include <nlohmann/json.hpp>

#include "Files.h"
#include "storage/SettingCodecs.h"

namespace tendel {
namespace {

using nlohmann::json;

// All settings by their keys.
json all(const AppSettings& s) {
    return {{"workingHours", encode(*s.workingHours)},
            {"showsMenuBarCountdown", *s.showsMenuBarCountdown},
            {"alertAutoHide", static_cast<int>(*s.alertAutoHide)},
            {"alertStyle", rawValue(*s.alertStyle)},
            {"snoozeMinutes", *s.snoozeMinutes},
            {"dailyGoal", *s.dailyGoal ? encode(**s.dailyGoal) : json()},
            {"focusPlan", encode(*s.focusPlan)},
            {"showsFocusInNotch", *s.showsFocusInNotch},
            {"showsPausesInNotch", *s.showsPausesInNotch},
            {"hidesLivePillInFullScreen", *s.hidesLivePillInFullScreen},
            {"playsBreakEndSound", *s.playsBreakEndSound},
            {"countsAwayAsBreak", *s.countsAwayAsBreak},
            {"idleMinutes", *s.idleMinutes},
            {"holdsAlertsWhenBusy", *s.holdsAlertsWhenBusy},
            {"hasCompletedSetup", *s.hasCompletedSetup},
            {"settingsPane", *s.settingsPane},
            {"statsRange", rawValue(*s.statsRange)},
            {"statsFilter", rawValue(*s.statsFilter)},
            {"soundVolume", *s.soundVolume},
            {"focusMix", encode(*s.focusMix)},
            {"sharesUsage", *s.sharesUsage},
            {"breakMix", encode(*s.breakMix)}};
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
        {"nothing", "0", asStored},
        {"workingHours", hours + R"("workdays":[1,7]})", asStored},
        {"workingHours", hours + R"("workdays":[]})", asStored},
        {"workingHours", hours + R"("workdays":[],"more":1})", hours + R"("workdays":[]})"},
        {"workingHours", hours + R"("workdays":["Monday"]})", byDefault},
        {"workingHours", hours + R"("workdays":7})", byDefault},
        {"workingHours", R"({"start":{"hour":8},"end":{"hour":9,"minute":0},"workdays":[]})",
         byDefault},
        {"workingHours", "[8, 16]", byDefault},
        {"alertAutoHide", "10", asStored},
        {"alertAutoHide", "60", asStored},
        {"alertAutoHide", "0", asStored},
        {"alertAutoHide", "45", byDefault},
        {"alertAutoHide", "-1", byDefault},
        {"alertAutoHide", "\"10\"", byDefault},
        {"alertAutoHide", "18446744073709551615", byDefault},
        {"alertStyle", "\"compact\"", asStored},
        {"alertStyle", "\"Compact\"", byDefault},
        {"alertStyle", "1", byDefault},
        {"snoozeMinutes", "12", asStored},
        {"snoozeMinutes", "12.5", byDefault},
        {"snoozeMinutes", "99999999999", byDefault},
        {"snoozeMinutes", "true", byDefault},
        {"dailyGoal", R"({"text":"Rest","day":"2026-03-02T00:00:00Z","isDone":true})", asStored},
        {"dailyGoal", R"({"text":"Rest","day":"today","isDone":true})", byDefault},
        {"focusPlan", R"({"focusMinutes":50,"breakMinutes":10,"longBreakEvery":4})", asStored},
        {"focusPlan", R"({"focusMinutes":50,"breakMinutes":10})", asStored},
        {"focusPlan", R"({"focusMinutes":50,"breakMinutes":10,"longBreakEvery":"4"})", byDefault},
        {"focusPlan", R"({"focusMinutes":50})", byDefault},
        {"showsMenuBarCountdown", "\"true\"", byDefault},
        {"holdsAlertsWhenBusy", "0", byDefault},
        {"sharesUsage", "null", byDefault},
        {"idleMinutes", "3", asStored},
        {"idleMinutes", "10", asStored},
        {"idleMinutes", "15", asStored},
        {"idleMinutes", "7", byDefault},
        {"idleMinutes", "0", byDefault},
        {"statsRange", "\"month\"", asStored},
        {"statsRange", "\"year\"", byDefault},
        {"statsFilter", "\"private\"", asStored},
        {"statsFilter", "\"private_\"", byDefault},
        {"soundVolume", "0.25", asStored},
        {"soundVolume", "1", asStored},
        {"soundVolume", "1.7", "1.0"},
        {"soundVolume", "-2", "0.0"},
        {"soundVolume", "\"loud\"", byDefault},
        {"focusMix", R"({"levels":{"rain":0.5},"on":["rain","fan"]})", asStored},
        {"focusMix", R"({"levels":{"rain":0.5},"on":["hail"]})", byDefault},
        {"breakMix", R"({"levels":{"rain":"0.5"},"on":[]})", byDefault},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.key + " = " + each.stored);
        Defaults defaults;
        ASSERT_TRUE(defaults.set(each.key, json::parse(each.stored)));
        json expected = fresh;
        if (each.reads != byDefault && fresh.contains(each.key))
            expected[each.key] = json::parse(each.reads == asStored ? each.stored : each.reads);
        EXPECT_EQ(all(AppSettings(defaults)), expected);
    }
}

// Each setting goes to its own key at once, in a form that the next start reads back.
TEST(AppSettings, AreThereAtTheNextStart) {
    const TemporaryFolder folder;
    const auto file = folder.path / "defaults.json";
    json chosen;
    {
        Defaults defaults(file);
        AppSettings s(defaults);
        s.workingHours.set({{22, 0}, {6, 0}, {}});
        s.showsMenuBarCountdown.set(true);
        s.alertAutoHide.set(AlertAutoHide::never);
        s.alertStyle.set(AlertStyle::compact);
        s.snoozeMinutes.set(9);
        s.dailyGoal.set(DailyGoal{"Walk \"far\" \n ü", Instant{std::chrono::hours(7)}, true});
        s.focusPlan.set({45, 15, 3});
        s.showsFocusInNotch.set(false);
        s.showsPausesInNotch.set(false);
        s.hidesLivePillInFullScreen.set(true);
        s.playsBreakEndSound.set(false);
        s.countsAwayAsBreak.set(false);
        s.idleMinutes.set(10);
        s.holdsAlertsWhenBusy.set(false);
        s.hasCompletedSetup.set(true);
        s.settingsPane.set("about");
        s.statsRange.set(StatsRange::today);
        s.statsFilter.set(StatsFilter::private_);
        s.soundVolume.set(0.125);
        s.focusMix.set({{{FocusSound::brown, 0.25}}, {FocusSound::ambient}});
        s.sharesUsage.set(false);
        s.breakMix.set({{}, {FocusSound::ocean, FocusSound::wind}});
        chosen = all(s);
    }
    for (const auto& [key, value] : chosen.items())
        EXPECT_NE(value, fresh[key]) << key;
    Defaults again(file);
    EXPECT_EQ(all(AppSettings(again)), chosen);
    EXPECT_EQ(json::parse(contentOf(file)), chosen);  // the stored forms, under their own keys
}

TEST(AppSettings, TakesOverTheOneSoundOfOlderVersions) {
    Defaults defaults;
    ASSERT_TRUE(defaults.set("focusSound", "rain"));
    ASSERT_TRUE(defaults.set("breakSound", "none"));
    const json rain = json::parse(R"({"levels":{},"on":["rain"]})");
    EXPECT_EQ(all(AppSettings(defaults))["focusMix"], rain);
    EXPECT_EQ(all(AppSettings(defaults))["breakMix"], fresh["breakMix"]);
    EXPECT_EQ(defaults.json("focusMix"), rain);

    // Once there is a mix, the older key counts no more, whatever the mix is.
    const json fan = json::parse(R"({"levels":{},"on":["fan"]})");
    ASSERT_TRUE(defaults.set("focusMix", fan));
    EXPECT_EQ(all(AppSettings(defaults))["focusMix"], fan);
    ASSERT_TRUE(defaults.set("focusMix", "odd"));
    EXPECT_EQ(all(AppSettings(defaults))["focusMix"], fresh["focusMix"]);
}

}  // namespace
}  // namespace tendel

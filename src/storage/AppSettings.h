#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "base/Observable.h"
#include "model/AlertStyle.h"
#include "model/DailyGoal.h"
#include "model/FocusPlan.h"
#include "model/SoundMix.h"
#include "model/StatsFilter.h"
#include "model/StatsRange.h"
#include "model/WorkingHours.h"
#include "storage/Defaults.h"

namespace tendel {

// One setting: an observable value that is written to the defaults at every change.
template <class T>
class Setting {
public:
    Setting(T initial, std::function<void(const T&)> write)
        : value_(std::move(initial)), write_(std::move(write)) {}

    const T& get() const { return value_.get(); }
    const T& operator*() const { return value_.get(); }
    void set(T value) {
        if (value == value_.get()) return;
        write_(value);
        value_.set(std::move(value));
    }
    Subscription observe(std::function<void()> observer) const {
        return value_.observe(std::move(observer));
    }

private:
    Observable<T> value_;
    std::function<void(const T&)> write_;
};

// Every preference of the user. Read once from the defaults (what is missing or makes no sense
// gives the default) and written back at every change. Main thread only; the defaults must outlive
// it.
class AppSettings {
public:
    explicit AppSettings(Defaults& defaults);

    Setting<WorkingHours> workingHours;
    Setting<bool> showsMenuBarCountdown;
    Setting<AlertAutoHide> alertAutoHide;
    Setting<AlertStyle> alertStyle;
    Setting<int> snoozeMinutes;
    Setting<std::optional<DailyGoal>> dailyGoal;
    Setting<FocusPlan> focusPlan;
    Setting<bool> showsFocusInNotch;
    Setting<bool> showsPausesInNotch;
    Setting<bool> hidesLivePillInFullScreen;
    Setting<bool> playsBreakEndSound;
    Setting<bool> countsAwayAsBreak;
    Setting<int> idleMinutes;  // 3, 5, 10 or 15 without input count as away
    Setting<bool> holdsAlertsWhenBusy;
    Setting<bool> hasCompletedSetup;
    Setting<std::string> settingsPane;  // raw text of the pane last shown
    Setting<StatsRange> statsRange;
    Setting<StatsFilter> statsFilter;
    Setting<double> soundVolume;  // 0–1
    Setting<SoundMix> focusMix;
    Setting<bool> sharesUsage;
    Setting<SoundMix> breakMix;
};

}  // namespace tendel

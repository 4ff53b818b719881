#pragma once

#include "alerts/NotchAlertController.h"
#include "app/AppNavigation.h"
#include "base/Calendar.h"
#include "base/EventLoop.h"
#include "focus/FocusTimer.h"
#include "menubar/MenuBarLabelMonitor.h"
#include "menubar/NotchLiveController.h"
#include "presence/UserPresence.h"
#include "reminders/ReminderScheduler.h"
#include "sound/FocusSoundController.h"
#include "sound/SoundEngine.h"
#include "storage/AppSettings.h"
#include "storage/Defaults.h"
#include "storage/Store.h"

namespace tendel {

// Makes every long-lived service once, wires their callbacks to each other and hands them to the
// interface. Main thread only; what it is given must outlive it.
class TendelApp {
public:
    // What the platform provides.
    struct Platform {
        EventLoop& loop;
        Calendar& calendar;
        Screens& screens;
        AudioOutput& audio;
        PresenceSources presence{};
    };

    TendelApp(Platform platform, Defaults& defaults, Store& store);

    // The one-time import, the history's backfill and the end of blocks that a crash left running,
    // then presence, which the scheduler asks.
    void start();
    // Saves what is not on disk yet.
    void willTerminate();

    Platform platform;
    Defaults& defaults;
    Store& store;
    AppSettings settings;
    UserPresence presence;
    ReminderScheduler scheduler;
    SoundEngine engine;
    NotchAlertController alerts;
    FocusTimer focus;
    FocusSoundController sounds;
    NotchLiveController live;
    MenuBarLabelMonitor label;
    AppNavigation navigation;

private:
    void presenceDidChange(Presence found);
    void watchForBusy();
    void updateLiveFocus();
    void updateLivePause();
    void perform(LiveActivity::Control control);

    Subscription zoneChanged_;  // made first of all that listen, so that the calendar is right when
                                // they look
    Subscription alertsChanged_, sessionChanged_, volumeChanged_, muteChanged_, liveZoneChanged_;
};

}  // namespace tendel

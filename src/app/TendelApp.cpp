#include "app/TendelApp.h"

#include "base/Log.h"
#include "reminders/ReminderEventBackfill.h"
#include "storage/LegacyReminderImport.h"

namespace tendel {

namespace {

// How long after a call, a presentation or an absence kept reminders wait, so that the user has
// arrived.
constexpr Duration releaseDelay = std::chrono::seconds(3);

}  // namespace

TendelApp::TendelApp(Platform given, Defaults& defaultsStore, Store& reminderStore)
    : platform(std::move(given)),
      defaults(defaultsStore),
      store(reminderStore),
      settings(defaults),
      presence(settings, platform.loop, platform.presence),
      scheduler(
          settings, store, platform.loop, platform.calendar, [this] { return presence.refresh(); },
          releaseDelay),
      engine(platform.loop, platform.audio),
      alerts(settings, store, platform.loop, platform.calendar, scheduler, platform.screens,
             engine),
      focus(settings, store, platform.loop, scheduler, engine,
            [this] { return presence.refresh(); }),
      sounds(settings, platform.loop, engine, [this] { return *focus.session(); }),
      zoneChanged_(
          platform.loop.timeZoneChanged.connect([this] { platform.calendar.useSystemZone(); })) {
    scheduler.presenter = &alerts;
    focus.presenter = &alerts;
    alerts.onFocusAction = [this](FocusAlertAction action) { focus.perform(action); };
    presence.onChange = [this](Presence found) { presenceDidChange(found); };
    presence.fullScreen().onChange = [this] { presence.refresh(); };
    alertsChanged_ = alerts.model().changed.connect([this](const auto&) { watchForBusy(); });
    sounds.onPlayingChange = [this](bool) { watchForBusy(); };
    sessionChanged_ = focus.session().observe([this] { sounds.sessionDidChange(); });
    const auto setVolume = [this] { engine.setVolume(static_cast<float>(*settings.soundVolume)); };
    setVolume();
    volumeChanged_ = settings.soundVolume.observe(setVolume);
}

void TendelApp::start() {
    importLegacyReminders(store, defaults, platform.calendar, platform.loop.now());
    backfillEventTitles(store);
    focus.closeBlocksLeftRunning();
    presence.observeSettings();
    presence.refresh();
    scheduler.start();
}

void TendelApp::presenceDidChange(Presence found) {
    log(LogLevel::debug, "presence", name(found));
    sounds.presenceDidChange(found);
    focus.presenceDidChange(found);
    scheduler.presenceDidChange(found);
    if (isBusy(found)) alerts.userGotBusy(found);
    if (found == Presence::away) alerts.userWentAway();
}

// A call that begins while an alert is up, or sounds play, is to take them away soon.
void TendelApp::watchForBusy() {
    presence.setWatchesForBusy(!alerts.queue().isEmpty() || sounds.isPlaying());
}

void TendelApp::willTerminate() {
    focus.appWillTerminate();
    // What still cannot be saved was logged when it was answered.
    static_cast<void>(store.flush());
}

}  // namespace tendel

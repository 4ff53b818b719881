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
      alerts(settings, store, platform.loop, platform.calendar, scheduler, platform.screens,
             platform.sounds),
      zoneChanged_(
          platform.loop.timeZoneChanged.connect([this] { platform.calendar.useSystemZone(); })) {
    scheduler.presenter = &alerts;
    presence.onChange = [this](Presence found) { presenceDidChange(found); };
    presence.fullScreen().onChange = [this] { presence.refresh(); };
    // A call that begins while an alert is up is to take it away soon.
    alertsChanged_ = alerts.model().changed.connect(
        [this](const auto&) { presence.setWatchesForBusy(!alerts.queue().isEmpty()); });
}

void TendelApp::start() {
    importLegacyReminders(store, defaults, platform.calendar, platform.loop.now());
    backfillEventTitles(store);
    presence.observeSettings();
    presence.refresh();
    scheduler.start();
}

void TendelApp::presenceDidChange(Presence found) {
    log(LogLevel::debug, "presence", name(found));
    scheduler.presenceDidChange(found);
    if (isBusy(found)) alerts.userGotBusy(found);
    if (found == Presence::away) alerts.userWentAway();
}

void TendelApp::willTerminate() {
    // What still cannot be saved was logged when it was answered.
    static_cast<void>(store.flush());
}

}  // namespace tendel

#include "app/TendelApp.h"

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
      scheduler(settings, store, platform.loop, platform.calendar, platform.presence, releaseDelay),
      alerts(settings, store, platform.loop, platform.calendar, scheduler, platform.screens,
             platform.sounds),
      zoneChanged_(
          platform.loop.timeZoneChanged.connect([this] { platform.calendar.useSystemZone(); })) {
    scheduler.presenter = &alerts;
}

void TendelApp::start() {
    importLegacyReminders(store, defaults, platform.calendar, platform.loop.now());
    backfillEventTitles(store);
    scheduler.start();
}

void TendelApp::willTerminate() {
    // What still cannot be saved was logged when it was answered.
    static_cast<void>(store.flush());
}

}  // namespace tendel

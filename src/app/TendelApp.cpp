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
      live(settings, platform.loop, platform.screens,
           [this](const ScreenInfo& screen) {
               return presence.fullScreen().isFullScreen(screen.name);
           }),
      label(settings, platform.loop, scheduler, focus, live),
      zoneChanged_(
          platform.loop.timeZoneChanged.connect([this] { platform.calendar.useSystemZone(); })) {
    scheduler.presenter = &alerts;
    focus.presenter = &alerts;
    alerts.onFocusAction = [this](FocusAlertAction action) { focus.perform(action); };
    presence.onChange = [this](Presence found) { presenceDidChange(found); };
    presence.fullScreen().onChange = [this] {
        presence.refresh();
        live.fullScreenDidChange();
    };
    alertsChanged_ = alerts.model().changed.connect([this](const auto&) {
        live.alertDidChange(alerts);
        watchForBusy();
    });
    sounds.onPlayingChange = [this](bool) {
        watchForBusy();
        updateLiveFocus();
    };
    muteChanged_ = sounds.isMuted().observe([this] { updateLiveFocus(); });
    sessionChanged_ = focus.session().observe([this] {
        updateLiveFocus();
        sounds.sessionDidChange();
    });
    alerts.pill = &live;
    scheduler.onPauseChange = [this] { updateLivePause(); };
    liveZoneChanged_ = platform.loop.timeZoneChanged.connect([this] {
        updateLivePause();
        updateLiveFocus();
    });
    live.onShowingChange = [this] { alerts.liveDidChange(); };
    live.onControl = [this](LiveActivity::Control control) { perform(control); };
    live.onOpen = [this](LiveActivity::Source) { navigation.request(SidebarItem::focus); };
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

void TendelApp::updateLivePause() {
    live.update(pauseLiveActivity(scheduler, platform.calendar), LiveActivity::Source::pause);
}

void TendelApp::updateLiveFocus() {
    const auto& session = *focus.session();
    if (!session) return live.update(std::nullopt, LiveActivity::Source::focus);
    std::optional<LiveActivity::Control> sound;
    if (*sounds.isMuted())
        sound = LiveActivity::Control::unmute;
    else if (sounds.isPlaying())
        sound = LiveActivity::Control::mute;
    live.update(LiveActivity::focus(*session, sound, platform.calendar),
                LiveActivity::Source::focus);
}

void TendelApp::perform(LiveActivity::Control control) {
    using Control = LiveActivity::Control;
    switch (control) {
        case Control::pause:
            return focus.pause();
        case Control::resume:
            return focus.resume();
        case Control::skip:
            return focus.skip();
        case Control::stop:
            return focus.stop();
        case Control::startFocus:
            return focus.startNextFocus();
        case Control::extendBreak:
            return focus.extendBreak();
        case Control::finishBreak:
            return alerts.actions().done();
        case Control::stopBreak:
            return alerts.actions().skip();
        case Control::resumeReminders:
            return scheduler.resume();
        case Control::mute:
        case Control::unmute:
            return sounds.toggleMute();
    }
}

void TendelApp::willTerminate() {
    focus.appWillTerminate();
    // What still cannot be saved was logged when it was answered.
    static_cast<void>(store.flush());
}

}  // namespace tendel

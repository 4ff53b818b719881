#include "menubar/MenuBarLabelMonitor.h"

namespace tendel {

MenuBarLabelMonitor::MenuBarLabelMonitor(const AppSettings& settings, EventLoop& loop,
                                         const ReminderScheduler& scheduler,
                                         const FocusTimer& focus, NotchLiveController& live)
    : settings_(settings), scheduler_(scheduler), focus_(focus), live_(live), soon_(loop) {
    // One moment changes several of them, and between the first and the last they do not agree.
    const auto lookAgain = [this] {
        if (!soon_.isRunning()) soon_.start({}, [this] { look(); });
    };
    subscriptions_.push_back(scheduler_.upcoming().observe(lookAgain));
    subscriptions_.push_back(scheduler_.pausedUntil().observe(lookAgain));
    subscriptions_.push_back(scheduler_.now().observe(lookAgain));
    subscriptions_.push_back(focus_.session().observe(lookAgain));
    subscriptions_.push_back(focus_.now().observe(lookAgain));
    subscriptions_.push_back(settings_.showsMenuBarCountdown.observe(lookAgain));
    subscriptions_.push_back(live_.changed.connect(lookAgain));
    look();
}

void MenuBarLabelMonitor::look() {
    using Source = LiveActivity::Source;
    const auto& session = *focus_.session();
    const bool isPaused = scheduler_.pausedUntil()->has_value();
    // The pill is asked only where it matters: its answer may cost a look at the windows.
    label_.set(MenuBarLabel::of({.focus = session,
                                 .focusNow = *focus_.now(),
                                 .isFocusInPill = session && live_.canShow(Source::focus),
                                 .isPaused = isPaused,
                                 .isPauseInPill = isPaused && live_.canShow(Source::pause),
                                 .showsCountdown = *settings_.showsMenuBarCountdown,
                                 .upcoming = *scheduler_.upcoming(),
                                 .now = *scheduler_.now()}));
}

}  // namespace tendel

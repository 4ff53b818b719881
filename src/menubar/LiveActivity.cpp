#include "menubar/LiveActivity.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "alerts/NotchAlertModel.h"
#include "focus/FocusAlert.h"
#include "focus/FocusWords.h"
#include "menubar/Countdown.h"
#include "menubar/MenuBarLabel.h"
#include "reminders/PauseOption.h"
#include "reminders/ReminderScheduler.h"

namespace tendel {

namespace {

using Control = LiveActivity::Control;

constexpr double minute = 60;
constexpr double hour = 3600;

// The ring of the pill is small: of its way this much is the least that can be seen.
constexpr double visibleSteps = 180;

// In whole seconds that divide a minute, so that a look at the ring and one at the minutes are one.
double ringStep(double duration) {
    for (const double step : {60, 30, 20, 15, 12, 10, 6, 5, 4, 3, 2})
        if (step <= duration / visibleSteps) return step;
    return 1;
}

std::vector<Control> controlsOf(const FocusSession& session) {
    if (session.phase == FocusSession::Phase::ready)
        return {Control::startFocus, Control::extendBreak, Control::stop};
    return {session.isPaused() ? Control::resume : Control::pause, Control::skip, Control::stop};
}

std::string subtitleOf(const FocusSession& session, const Calendar& calendar) {
    if (session.phase == FocusSession::Phase::ready) return "Ready for the next focus block?";
    if (session.isBreak() && session.endsAt)
        return "Until " + calendar.formatTime(*session.endsAt) + ". Step away from the screen.";
    return "Then " + nextText(session);
}

}  // namespace

LiveActivity LiveActivity::reminderPause(Instant startedAt, Instant until,
                                         const Calendar& calendar) {
    return {.systemImage = "pause.fill",
            .tint = Tint::quiet,
            .title = "Reminders paused",
            .subtitle = "Until " + calendar.formatTime(until),
            .endsAt = until,
            .duration = toSeconds(until - startedAt),
            .controls = {Control::resumeReminders}};
}

LiveActivity LiveActivity::focus(const FocusSession& session, std::optional<Control> sounds,
                                 const Calendar& calendar) {
    const bool isReady = session.phase == FocusSession::Phase::ready;
    LiveActivity activity{.systemImage = std::string(symbolOf(session)),
                          .tint = session.isBreak() ? Tint::rest : Tint::focus,
                          .title = isReady ? FocusAlert().title() : phaseText(session),
                          .subtitle = subtitleOf(session, calendar),
                          .endsAt = session.endsAt,
                          .pausedRemaining = session.pausedRemaining,
                          .duration = session.phaseDuration,
                          .status = isReady ? "Ready" : "Round " + std::to_string(session.round),
                          .controls = controlsOf(session),
                          .skipTitle = session.isBreak() ? "Skip Break" : "Skip to Break",
                          .opensOnClick = true};
    if (sounds) activity.controls.push_back(*sounds);
    return activity;
}

LiveActivity LiveActivity::timedBreak(const NotchAlertContent& content) {
    LiveActivity activity{
        .systemImage = content.systemImage,
        .tint = content.kind == ReminderKind::private_ ? Tint::private_ : Tint::work,
        .title = content.title,
        .endsAt = content.breakEndsAt,
        .duration = static_cast<double>(content.durationSeconds.value_or(0)),
        .controls = {Control::finishBreak, Control::stopBreak}};
    if (!content.detail.empty()) activity.subtitle = content.detail;
    return activity;
}

LiveActivity LiveActivity::finishedBreak(const LiveActivity& running, std::string message) {
    return {.systemImage = "checkmark", .tint = running.tint, .title = std::move(message)};
}

std::optional<double> LiveActivity::remaining(Instant now) const {
    if (pausedRemaining) return std::max(*pausedRemaining, 0.0);
    if (endsAt) return std::max(toSeconds(*endsAt - now), 0.0);
    return std::nullopt;
}

std::string LiveActivity::compactText(Instant now) const {
    const auto left = remaining(now);
    if (!left) return status.value_or("");
    if (*left > minute) return std::to_string(std::lround(std::ceil(*left / minute))) + "m";
    return clockText(*left);
}

std::string LiveActivity::fullText(Instant now) const {
    const auto left = remaining(now);
    if (!left) return status.value_or("");
    // As the text shows it, so that the hour is never "60:00".
    if (std::ceil(*left) < hour) return clockText(*left);
    return countdownText(now, now + seconds(*left));
}

double LiveActivity::progressLeft(Instant now) const {
    if (duration <= 0) return 0;
    // A clock that was set back leaves no more than the whole.
    return std::min(remaining(now).value_or(0) / duration, 1.0);
}

std::optional<Duration> LiveActivity::untilNextChange(Instant now, Detail detail) const {
    const auto left = remaining(now);
    if (!left || pausedRemaining || *left <= 0) return std::nullopt;
    const bool isBySecond = *left <= (detail == Detail::full ? hour : minute);
    const double step = isBySecond ? 1 : ringStep(duration);
    return seconds(*left - step * (std::ceil(*left / step) - 1));
}

std::string controlTitle(const LiveActivity& activity, Control control) {
    switch (control) {
        case Control::pause:
            return "Pause";
        case Control::resume:
            return "Resume";
        case Control::skip:
            return activity.skipTitle;
        case Control::stop:
        case Control::stopBreak:
            return "Stop";
        case Control::startFocus:
            return "Start Focus";
        case Control::extendBreak:
            return std::to_string(std::lround(focusExtensionSeconds / minute)) +
                   " more minutes of break";
        case Control::finishBreak:
            return "Done";
        case Control::resumeReminders:
            return std::string(resumeTitle);
        case Control::mute:
            return "Mute";
        case Control::unmute:
            return "Unmute";
    }
    return {};
}

std::optional<LiveActivity> pauseLiveActivity(const ReminderScheduler& scheduler,
                                              const Calendar& calendar) {
    const auto until = *scheduler.pausedUntil();
    const auto startedAt = scheduler.pauseStartedAt();
    if (!until || !startedAt) return std::nullopt;
    return LiveActivity::reminderPause(*startedAt, *until, calendar);
}

}  // namespace tendel

#include "app/AlertHold.h"

#include <string_view>

#include "focus/FocusWords.h"

namespace tendel {

namespace {

std::optional<AlertHold::Reason> reasonOf(Presence presence) {
    switch (presence) {
        case Presence::present:
            break;
        case Presence::away:
            return AlertHold::Reason::away;
        case Presence::busyCall:
            return AlertHold::Reason::call;
        case Presence::busyPresentation:
            return AlertHold::Reason::presentation;
    }
    return std::nullopt;
}

std::string_view words(AlertHold::Reason reason) {
    switch (reason) {
        case AlertHold::Reason::pause:
            return "Paused";
        case AlertHold::Reason::away:
            return "Away";
        case AlertHold::Reason::call:
            return "In a call";
        case AlertHold::Reason::presentation:
            return "Presenting";
        case AlertHold::Reason::focus:
            break;
    }
    return "Focusing";
}

}  // namespace

std::string whenOnClock(Instant t, Instant now, const Calendar& calendar) {
    const std::string time = calendar.formatTime(t);
    return calendar.day(now).contains(t) ? time : calendar.formatWeekdayShort(t) + " " + time;
}

std::string AlertHold::text(const Calendar& calendar, Instant now) const {
    std::string text = focusStatus.empty() ? std::string(words(reason)) : focusStatus;
    if (pausedUntil) text += " until " + whenOnClock(*pausedUntil, now, calendar);
    if (waiting == 1) text += " · 1 reminder waits";
    if (waiting > 1) text += " · " + std::to_string(waiting) + " reminders wait";
    return text;
}

AlertHoldMonitor::AlertHoldMonitor(const ReminderScheduler& scheduler,
                                   const Observable<Presence>& presence, const FocusTimer& focus,
                                   EventLoop& loop)
    : scheduler_(scheduler), presence_(presence), focus_(focus), loop_(loop) {
    const auto lookAgain = [this] { look(); };
    subscriptions_.push_back(scheduler_.pausedUntil().observe(lookAgain));
    subscriptions_.push_back(scheduler_.kept().observe(lookAgain));
    subscriptions_.push_back(presence_.observe(lookAgain));
    subscriptions_.push_back(focus_.session().observe(lookAgain));
    subscriptions_.push_back(focus_.now().observe(lookAgain));
    look();
}

void AlertHoldMonitor::look() {
    current_.set(find());
    nextSecond_.stop();
    if (!*current_ || (*current_)->reason != AlertHold::Reason::focus) return;
    const Duration left = *(*focus_.session())->endsAt - loop_.now();
    if (left <= Duration::zero() || left > std::chrono::minutes(1)) return;
    const Duration beyondSecond = left % std::chrono::seconds(1);
    nextSecond_.start(beyondSecond > Duration::zero() ? beyondSecond : std::chrono::seconds(1),
                      [this] { look(); });
}

std::optional<AlertHold> AlertHoldMonitor::find() const {
    AlertHold hold{.waiting = scheduler_.kept()->size(), .pausedUntil = *scheduler_.pausedUntil()};
    const auto& session = focus_.session().get();
    if (hold.pausedUntil) {
        hold.reason = AlertHold::Reason::pause;
    } else if (const auto reason = reasonOf(*presence_)) {
        hold.reason = *reason;
    } else if (session && session->isFocusing()) {
        hold.reason = AlertHold::Reason::focus;
        hold.focusStatus = statusText(*session, loop_.now());
    } else {
        return std::nullopt;
    }
    return hold;
}

}  // namespace tendel

#include "app/AlertHold.h"

#include <string_view>

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
    std::string text(words(reason));
    if (pausedUntil) text += " until " + whenOnClock(*pausedUntil, now, calendar);
    if (waiting == 1) text += " · 1 reminder waits";
    if (waiting > 1) text += " · " + std::to_string(waiting) + " reminders wait";
    return text;
}

AlertHoldMonitor::AlertHoldMonitor(const ReminderScheduler& scheduler,
                                   const Observable<Presence>& presence)
    : scheduler_(scheduler), presence_(presence), current_(find()) {
    const auto look = [this] { current_.set(find()); };
    subscriptions_.push_back(scheduler_.pausedUntil().observe(look));
    subscriptions_.push_back(scheduler_.kept().observe(look));
    subscriptions_.push_back(scheduler_.isHoldingReminders().observe(look));
    subscriptions_.push_back(presence_.observe(look));
}

std::optional<AlertHold> AlertHoldMonitor::find() const {
    const auto& pausedUntil = scheduler_.pausedUntil().get();
    auto reason = reasonOf(*presence_);
    if (!reason && *scheduler_.isHoldingReminders()) reason = AlertHold::Reason::focus;
    if (pausedUntil) reason = AlertHold::Reason::pause;
    if (!reason) return std::nullopt;
    return AlertHold{
        .reason = *reason, .waiting = scheduler_.kept()->size(), .pausedUntil = pausedUntil};
}

}  // namespace tendel

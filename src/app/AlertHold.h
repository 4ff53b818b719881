#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/Calendar.h"
#include "base/Observable.h"
#include "base/Timer.h"
#include "focus/FocusTimer.h"
#include "model/Presence.h"
#include "reminders/ReminderScheduler.h"

namespace tendel {

// "14:30" today, "Tue 14:30" on another day.
std::string whenOnClock(Instant t, Instant now, const Calendar& calendar);

// Why no reminder is shown now although one may be due.
struct AlertHold {
    // Of several the first one is told.
    enum class Reason { pause, away, call, presentation, focus };

    Reason reason = Reason::pause;
    std::size_t waiting = 0;             // reminders that are shown once nothing holds them
    std::optional<Instant> pausedUntil;  // of a pause
    std::string focusStatus{};  // of a focus phase: "Focusing · round 2 · 12 min left · …"

    // One line for a person: "In a call · 2 reminders wait", "Paused until 14:30".
    std::string text(const Calendar& calendar, Instant now) const;

    friend bool operator==(const AlertHold&, const AlertHold&) = default;
};

// Keeps what holds alerts back up to date, by the second in the last minute of a focus phase;
// nothing while alerts are shown. Main thread only; what it is given must outlive it.
class AlertHoldMonitor {
public:
    AlertHoldMonitor(const ReminderScheduler& scheduler, const Observable<Presence>& presence,
                     const FocusTimer& focus, EventLoop& loop);

    const Observable<std::optional<AlertHold>>& current() const { return current_; }

private:
    std::optional<AlertHold> find() const;
    void look();

    const ReminderScheduler& scheduler_;
    const Observable<Presence>& presence_;
    const FocusTimer& focus_;
    EventLoop& loop_;
    Observable<std::optional<AlertHold>> current_;
    Timer nextSecond_{loop_};
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

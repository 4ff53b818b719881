#pragma once

#include <functional>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

#include "base/Calendar.h"
#include "base/EventLoop.h"
#include "base/Observable.h"
#include "base/Timer.h"
#include "model/Presence.h"
#include "reminders/Upcoming.h"
#include "storage/AppSettings.h"
#include "storage/Store.h"

namespace tendel {

// Decides when reminders fire and what becomes of a due one: shown, kept back, counted as a break,
// dropped. Main thread only. What it is given must outlive it.
class ReminderScheduler {
public:
    // `releaseDelay`: how long after the user is available again kept reminders are shown.
    ReminderScheduler(AppSettings& settings, Store& store, EventLoop& loop,
                      const Calendar& calendar, std::function<Presence()> presence,
                      Duration releaseDelay);

    // Begins to watch and to fire; a second call does nothing.
    void start();
    // Looks again for what comes next, strictly after now, `notBefore` and the end of the pause.
    void reschedule(std::optional<Instant> notBefore = std::nullopt);

    // Nothing fires until then; what is kept back or on the screen is dropped. Not remembered over
    // a restart.
    void pause(Instant until);
    void resume();
    // Fires this reminder once more after `length`, in place of its chain's times before that.
    void snooze(ReminderId id, Duration length);

    void presenceDidChange(Presence presence);
    // Reminders that were on the screen when the user left: counted as breaks where that applies,
    // the others kept.
    void keepAfterAway(std::span<const Upcoming::Item> items, Instant dueAt);
    // Reminders taken off the screen because the user got busy.
    void keep(std::span<const Upcoming::Item> items, KeptReason reason, Instant dueAt);
    // A focus block holds reminders back; its end releases them at once.
    void setHoldingReminders(bool isHolding);

    const Observable<std::optional<Upcoming>>& upcoming() const { return upcoming_; }
    const Observable<std::optional<Instant>>& pausedUntil() const { return pausedUntil_; }
    std::optional<Instant> pauseStartedAt() const { return pauseStartedAt_; }
    // The time for the interface, set anew at every whole minute.
    const Observable<Instant>& now() const { return now_; }
    const Observable<bool>& isHoldingReminders() const { return isHoldingReminders_; }
    // What fell due while it could not be shown, and waits to be.
    const Observable<std::vector<Upcoming::Item>>& kept() const { return kept_; }
    // When snoozed reminders fire again; until then their chains are silent.
    const std::unordered_map<ReminderId, Instant>& snoozes() const { return snoozes_; }

    ReminderAlertPresenting* presenter = nullptr;  // not owned
    std::function<void()> onPauseChange = [] {};

private:
    std::optional<Upcoming> nextUpcoming(Instant from);
    // The firing that waits for its wake-up although its time has come by `t`; nothing inside a
    // pause.
    std::optional<Upcoming> takeDueFiring(Instant t);
    // The items as their reminders are now, without those that are gone or off.
    std::vector<Upcoming::Item> refreshed(std::span<const Upcoming::Item> items) const;
    void fire(Upcoming due);
    void handle(const Upcoming& due);
    void countAsBreaks(std::span<const Upcoming::Item> items, Instant dueAt);
    void releaseKept();
    void endPause();
    void tickMinute();

    AppSettings& settings_;
    Store& store_;
    EventLoop& loop_;
    const Calendar& calendar_;
    std::function<Presence()> presence_;
    Duration releaseDelay_;

    bool isStarted_ = false;
    Observable<bool> isHoldingReminders_;
    Observable<std::optional<Upcoming>> upcoming_;
    Observable<std::optional<Instant>> pausedUntil_;
    std::optional<Instant> pauseStartedAt_;
    Observable<Instant> now_;
    Observable<std::vector<Upcoming::Item>> kept_;
    std::unordered_map<ReminderId, Instant> snoozes_;
    std::optional<Instant> lastFired_;

    Timer wakeUp_{loop_};
    Timer releaseTask_{loop_};
    Timer minuteTicker_{loop_};
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

#include "reminders/ReminderScheduler.h"

#include <algorithm>

#include "reminders/ReminderSchedule.h"

namespace tendel {

namespace {

// A firing found later than this was slept through; it is dropped.
constexpr Duration greatestLateness = std::chrono::seconds(60);

// A clock set back by no more than this (a correction over the network) does not bring back an
// instant that has fired. A greater step is taken as the user's own: staying silent until the old
// time is reached again would be worse.
constexpr Duration correctionOfClock = std::chrono::minutes(5);

}  // namespace

ReminderScheduler::ReminderScheduler(AppSettings& settings, Store& store, EventLoop& loop,
                                     const Calendar& calendar, std::function<Presence()> presence,
                                     Duration releaseDelay)
    : settings_(settings),
      store_(store),
      loop_(loop),
      calendar_(calendar),
      presence_(std::move(presence)),
      releaseDelay_(releaseDelay),
      now_(loop.now()) {}

void ReminderScheduler::start() {
    if (isStarted_) return;
    isStarted_ = true;
    const auto lookAgain = [this] { reschedule(); };
    const auto clockMoved = [this] {
        tickMinute();
        reschedule();
    };
    subscriptions_.push_back(store_.saved.connect(lookAgain));
    subscriptions_.push_back(settings_.workingHours.observe(lookAgain));
    subscriptions_.push_back(loop_.wallClockChanged.connect(clockMoved));
    subscriptions_.push_back(loop_.timeZoneChanged.connect(clockMoved));
    tickMinute();
    reschedule();
}

void ReminderScheduler::reschedule(std::optional<Instant> notBefore) {
    if (!isStarted_) return;
    const Instant t = loop_.now();
    if (const auto due = takeDueFiring(t)) {
        // Something else made the scheduler look in the very moment in which the wake-up was due.
        fire(*due);
        return;
    }
    wakeUp_.stop();
    if (*pausedUntil_ && t >= **pausedUntil_) endPause();

    // After a firing that was found late, what fell due since then is still to come.
    const bool followsFiring = notBefore && t - *notBefore <= greatestLateness;
    Instant from = followsFiring ? *notBefore : notBefore ? std::max(t, *notBefore) : t;
    if (*pausedUntil_) from = std::max(from, **pausedUntil_);
    if (lastFired_ && *lastFired_ - t > correctionOfClock) lastFired_.reset();
    if (lastFired_) from = std::max(from, *lastFired_);

    upcoming_.set(nextUpcoming(from));

    std::optional<Instant> wakeUp = *pausedUntil_;
    if (*upcoming_ && (!wakeUp || (*upcoming_)->fireDate < *wakeUp))
        wakeUp = (*upcoming_)->fireDate;
    if (!wakeUp) return;
    wakeUp_.start(*wakeUp - t, [this, wakeUp] {
        const auto due = *upcoming_;
        if (due && due->fireDate == wakeUp && loop_.now() >= *wakeUp - std::chrono::seconds(1))
            fire(*due);
        else
            reschedule();
    });
}

std::optional<Upcoming> ReminderScheduler::takeDueFiring(Instant t) {
    if (!wakeUp_.isRunning() || *pausedUntil_ || !*upcoming_ || (*upcoming_)->fireDate > t)
        return std::nullopt;
    wakeUp_.stop();
    return *upcoming_;
}

std::optional<Upcoming> ReminderScheduler::nextUpcoming(Instant from) {
    std::erase_if(snoozes_, [&](const auto& snooze) {
        const Reminder* reminder = store_.find(snooze.first);
        return snooze.second <= from || !reminder || !reminder->isOn;
    });

    ScheduleSearch search(calendar_, *settings_.workingHours);
    std::optional<Instant> earliest;
    std::vector<const Reminder*> due;
    for (const Reminder& reminder : store_.reminders()) {
        if (!reminder.isOn) continue;
        const auto snooze = snoozes_.find(reminder.id);
        const auto next = snooze != snoozes_.end() ? std::optional(snooze->second)
                                                   : search.nextFireDate(reminder, from);
        if (!next || (earliest && *next > *earliest)) continue;
        if (next != earliest) due.clear();
        earliest = next;
        due.push_back(&reminder);
    }
    if (!earliest) return std::nullopt;

    Upcoming upcoming{.items = {}, .fireDate = *earliest};
    for (const Reminder* reminder : due)
        upcoming.items.push_back(Upcoming::Item::of(*reminder));
    return upcoming;
}

std::vector<Upcoming::Item> ReminderScheduler::refreshed(
    std::span<const Upcoming::Item> items) const {
    std::vector<Upcoming::Item> current;
    for (const Upcoming::Item& item : items) {
        const Reminder* reminder = store_.find(item.id);
        if (!reminder || !reminder->isOn) continue;
        current.push_back(Upcoming::Item::of(*reminder));
        current.back().missedAt = item.missedAt;
        current.back().keptReason = item.keptReason;
    }
    return current;
}

void ReminderScheduler::fire(Upcoming due) {
    due.items = refreshed(due.items);
    lastFired_ = due.fireDate;
    const Duration late = loop_.now() - due.fireDate;
    if (late <= greatestLateness && !due.items.empty()) handle(due);
    reschedule(due.fireDate);
}

void ReminderScheduler::handle(const Upcoming& due) {
    switch (presence_()) {
        case Presence::present:
            if (*isHoldingReminders_)
                keep(due.items, KeptReason::focus, due.fireDate);
            else if (presenter)
                presenter->present(due);
            break;
        case Presence::away:
            keepAfterAway(due.items, due.fireDate);
            break;
        case Presence::busyCall:
            keep(due.items, KeptReason::call, due.fireDate);
            break;
        case Presence::busyPresentation:
            keep(due.items, KeptReason::presentation, due.fireDate);
            break;
    }
}

void ReminderScheduler::keepAfterAway(std::span<const Upcoming::Item> items, Instant dueAt) {
    std::vector<Upcoming::Item> breaks(items.begin(), items.end());
    const auto others =
        std::stable_partition(breaks.begin(), breaks.end(),
                              [](const Upcoming::Item& item) { return item.skipsWhenAway; });
    countAsBreaks({breaks.begin(), others}, dueAt);
    keep({others, breaks.end()}, KeptReason::away, dueAt);
}

void ReminderScheduler::countAsBreaks(std::span<const Upcoming::Item> items, Instant dueAt) {
    std::vector<ReminderEvent> events;
    for (const Upcoming::Item& item : items)
        if (const Reminder* reminder = store_.find(item.id))
            events.emplace_back(*reminder, dueAt, Outcome::breakTaken, loop_.now());
    // A save that fails keeps the events and tries again later.
    if (!events.empty()) static_cast<void>(store_.record(events));
}

void ReminderScheduler::keep(std::span<const Upcoming::Item> items, KeptReason reason,
                             Instant dueAt) {
    auto all = *kept_;
    for (const Upcoming::Item& item : items) {
        auto kept = std::ranges::find(all, item.id, &Upcoming::Item::id);
        if (kept == all.end()) {
            kept = all.insert(all.end(), item);
            if (!kept->missedAt) kept->missedAt = dueAt;
        }
        kept->keptReason = std::max(kept->keptReason.value_or(reason), reason);
    }
    kept_.set(std::move(all));
}

void ReminderScheduler::presenceDidChange(Presence presence) {
    releaseTask_.stop();
    if (presence != Presence::present || *isHoldingReminders_ || kept_->empty()) return;
    releaseTask_.start(releaseDelay_, [this] {
        if (!*isHoldingReminders_ && presence_() == Presence::present) releaseKept();
    });
}

void ReminderScheduler::setHoldingReminders(bool isHolding) {
    const bool hasEnded = *isHoldingReminders_ && !isHolding;
    isHoldingReminders_.set(isHolding);
    if (hasEnded && presence_() == Presence::present) releaseKept();
}

void ReminderScheduler::releaseKept() {
    releaseTask_.stop();
    const auto items = refreshed(*kept_);
    kept_.set({});
    if (items.empty() || !presenter) return;
    const auto earliest = std::ranges::min(items, {}, &Upcoming::Item::missedAt).missedAt;
    presenter->present({.items = items, .fireDate = earliest.value_or(loop_.now())});
}

void ReminderScheduler::pause(Instant until) {
    pauseStartedAt_ = loop_.now();
    pausedUntil_.set(until);
    onPauseChange();
    kept_.set({});
    releaseTask_.stop();
    if (presenter) presenter->dismissAll();
    reschedule();
}

void ReminderScheduler::resume() {
    if (!*pausedUntil_) return;
    endPause();
    reschedule();
}

void ReminderScheduler::endPause() {
    pauseStartedAt_.reset();
    pausedUntil_.set(std::nullopt);
    onPauseChange();
}

void ReminderScheduler::snooze(ReminderId id, Duration length) {
    snoozes_[id] = loop_.now() + length;
    reschedule();
}

void ReminderScheduler::tickMinute() {
    const Instant t = loop_.now();
    now_.set(t);
    minuteTicker_.start(calendar_.nextMinute(t) - t, [this] { tickMinute(); });
}

}  // namespace tendel

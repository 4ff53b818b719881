#include "ReferenceModel.h"

#include <algorithm>
#include <utility>

namespace tendel {

using namespace std::chrono_literals;

namespace {
constexpr Duration releaseDelay = 3s;
constexpr Duration tickLength = 250ms;
}  // namespace

// What happens next, by the clock that goes on: the next firing, the end of the pause, the release
// of what is kept, the end of the break, or a tick of the shown alert. Of two at one moment the one
// named first comes first.
std::optional<std::pair<MonotonicInstant, ReferenceModel::Task>> ReferenceModel::nextTask() {
    std::optional<std::pair<MonotonicInstant, Task>> first;
    const auto consider = [&](MonotonicInstant at, Task task) {
        if (!first || at < first->first) first = {at, std::move(task)};
    };
    const auto onTheWall = [&](Instant at) { return std::max(running + (at - now), armedAt_); };
    if (pausedUntil)
        consider(onTheWall(*pausedUntil), [this] { look(); });
    else if (next)
        consider(onTheWall(next->due), [this] { fire(); });
    if (release)
        consider(*release, [this] {
            release.reset();
            if (presence == Presence::present && !isHolding) releaseKept();
        });
    if (shown && shown->isOnBreak) {
        consider(breakEnd, [this] { answer(Outcome::done, {}); });
    } else if (shown && left) {
        consider(nextTick, [this] { tick(); });
    } else if (shown && !waiting.empty()) {
        const auto oldest = std::ranges::min(waiting, {}, &Alert::waitingSince).waitingSince;
        consider(running + (oldest + 5min + 1us - now), [this] { tick(); });
    }
    return first;
}

void ReferenceModel::passUntil(MonotonicInstant end) {
    const int before = shownCount;
    const auto goOn = [this](MonotonicInstant to) {
        now += to - running;
        running = to;
    };
    auto task = nextTask();
    while (task && task->first <= end) {
        goOn(std::max(task->first, running));
        // Everything of this one moment, then a stop when there is something new to answer.
        task->second();
        task = nextTask();
        if (shownCount != before && !(task && task->first <= running)) return;
    }
    goOn(end);
}

void ReferenceModel::sleep(Duration span) {
    now += span;
    running += span;
    for (auto task = nextTask(); task && task->first <= running; task = nextTask())
        task->second();
}

void ReferenceModel::setClock(Instant to) {
    now = to;
    restartWaiting();
    look();
    passUntil(running);
}

void ReferenceModel::zoneChanged() {
    days_.clear();
    look();
}

const Reminder* ReferenceModel::find(ReminderId id) const {
    const auto found = std::ranges::find(reminders, id, &Reminder::id);
    return found != reminders.end() ? &*found : nullptr;
}

ReferenceModel::Alert ReferenceModel::alertOf(const Reminder& reminder, Instant due) const {
    return {.id = reminder.id,
            .title = reminder.displayTitle(),
            .due = due,
            .breakLength = reminder.durationSeconds,
            .countsWhenAway = reminder.skipsWhenAway(),
            .missedAt = {},
            .reason = {},
            .waitingSince = now};
}

// Every time of every reminder on that day: the start and then each interval until midnight, inside
// the working hours for work, outside them for private ones.
const std::vector<std::pair<Instant, ReminderId>>& ReferenceModel::chainTimes(
    const DayInterval& day) {
    const auto [known, isNew] = days_.try_emplace(day.day);
    if (!isNew) return known->second;
    const bool isWorkday = hours.workdays.contains(day.weekday);
    const Instant open = calendar.time(day, hours.start.hour, hours.start.minute);
    const Instant close = calendar.time(day, hours.end.hour, hours.end.minute);
    for (const Reminder& reminder : reminders) {
        if (!reminder.isOn) continue;
        const auto step = std::chrono::minutes(std::max(reminder.intervalMinutes, 1));
        for (Instant t = calendar.time(day, reminder.startHour, reminder.startMinute); t < day.end;
             t += step) {
            const bool isWorkTime = isWorkday && open <= t && t < close;
            if (isWorkTime == (reminder.kind() == ReminderKind::work))
                known->second.emplace_back(t, reminder.id);
        }
    }
    std::ranges::stable_sort(known->second, {}, &std::pair<Instant, ReminderId>::first);
    return known->second;
}

std::optional<ReferenceModel::Firing> ReferenceModel::firstDueAfter(Instant t) {
    std::map<ReminderId, Instant> first;
    std::optional<Instant> earliest;
    const auto consider = [&](ReminderId id, Instant due) {
        if (due <= t || (earliest && due > *earliest)) return;
        if (due != earliest) first.clear();
        earliest = due;
        first.emplace(id, due);
    };
    for (const auto& [id, at] : snoozes)
        consider(id, at);
    DayInterval day = calendar.day(t);
    for (int i = 0; i < 9 && (!earliest || day.start <= *earliest);
         ++i, day = calendar.dayAfter(day))
        for (const auto& [due, id] : chainTimes(day))
            if (due < t + 24h * 8 && !snoozes.contains(id)) consider(id, due);
    if (!earliest) return std::nullopt;
    Firing firing{*earliest, {}};
    for (const auto& [id, due] : first)
        firing.reminders.push_back(id);
    return firing;
}

void ReferenceModel::look(std::optional<Instant> justFired) {
    if (!justFired && next && !pausedUntil && next->due <= now) return fire();
    if (pausedUntil && now >= *pausedUntil) pausedUntil.reset();

    // After a firing on time, whatever else fell due since is still to come; otherwise only the
    // future counts.
    Instant from = justFired && now - *justFired <= 60s ? *justFired : now;
    if (pausedUntil) from = std::max(from, *pausedUntil);
    // A clock that was corrected a little does not fire again what has fired.
    if (lastFired && *lastFired - now > 5min) lastFired.reset();
    if (lastFired) from = std::max(from, *lastFired);

    std::erase_if(snoozes, [&](const auto& snooze) {
        const Reminder* reminder = find(snooze.first);
        return snooze.second <= from || !reminder || !reminder->isOn;
    });
    next = firstDueAfter(from);
    armedAt_ = running;
}

void ReferenceModel::fire() {
    const Firing firing = *std::exchange(next, std::nullopt);
    lastFired = firing.due;
    if (now - firing.due > 60s) {
        tally["slept through"] += 1;
    } else {
        std::vector<Alert> alerts;
        for (const ReminderId id : firing.reminders)
            alerts.push_back(alertOf(*find(id), firing.due));
        if (presence != Presence::present) {
            leaveOrKeep(alerts, presence);
        } else if (isHolding) {
            for (const Alert& alert : alerts)
                keep(alert, KeptReason::focus);
        } else {
            present(alerts);
        }
    }
    look(firing.due);
}

void ReferenceModel::keep(Alert alert, KeptReason reason) {
    tally["kept " + std::to_string(int(reason))] += 1;
    const auto known = std::ranges::find(kept, alert.id, &Alert::id);
    if (known != kept.end()) {
        known->reason = std::max(*known->reason, reason);
        return;
    }
    if (!alert.missedAt) alert.missedAt = alert.due;
    alert.reason = std::max(alert.reason.value_or(reason), reason);
    kept.push_back(std::move(alert));
}

void ReferenceModel::leaveOrKeep(const std::vector<Alert>& alerts, Presence why) {
    std::vector<Alert> breaks;
    for (const Alert& alert : alerts) {
        if (why == Presence::busyCall)
            keep(alert, KeptReason::call);
        else if (why == Presence::busyPresentation)
            keep(alert, KeptReason::presentation);
        else if (!alert.countsWhenAway)
            keep(alert, KeptReason::away);
        else
            breaks.push_back(alert);
    }
    record(breaks, Outcome::breakTaken);
}

void ReferenceModel::releaseKept() {
    release.reset();
    std::vector<Alert> alerts;
    for (const Alert& old : std::exchange(kept, {})) {
        const Reminder* reminder = find(old.id);
        if (!reminder || !reminder->isOn) continue;
        Alert alert = alertOf(*reminder, *old.missedAt);
        alert.missedAt = old.missedAt;
        alert.reason = old.reason;
        alerts.push_back(alert);
        tally["released"] += 1;
    }
    present(alerts);
}

void ReferenceModel::present(std::vector<Alert> alerts) {
    for (Alert& alert : alerts) {
        const auto sameReminder = [&](const Alert& other) { return other.id == alert.id; };
        if (shown && sameReminder(*shown)) {
            record({alert}, Outcome::expired);
            tally["fired while shown"] += 1;
            continue;
        }
        const auto older = std::ranges::find_if(waiting, sameReminder);
        if (older != waiting.end()) {
            record({*older}, Outcome::expired);
            tally["fired while waiting"] += 1;
            std::erase_if(waiting, sameReminder);
        }
        waiting.push_back(alert);
    }
    if (!shown) showNext();
}

void ReferenceModel::record(const std::vector<Alert>& alerts, Outcome outcome) {
    for (const Alert& alert : alerts) {
        const Reminder* reminder = find(alert.id);
        if (!reminder) continue;
        tally[std::string(rawValue(outcome))] += 1;
        ReminderEvent row;
        row.reminder = reminder->id;
        row.fireDate = alert.due;
        row.respondedAt = now;
        row.outcomeRaw = rawValue(outcome);
        row.reminderTitle = reminder->displayTitle();
        row.kindRaw = reminder->kind() == ReminderKind::private_ ? "private" : "work";
        rows.push_back(row);
    }
}

void ReferenceModel::restartWaiting() {
    for (Alert& alert : waiting)
        alert.waitingSince = now;
}

void ReferenceModel::expireStale() {
    std::vector<Alert> stale;
    std::erase_if(waiting, [&](const Alert& alert) {
        if (now - alert.waitingSince <= 5min) return false;
        stale.push_back(alert);
        return true;
    });
    tally["stale"] += int(stale.size());
    record(stale, Outcome::expired);
}

void ReferenceModel::showNext() {
    expireStale();
    if (waiting.empty()) {
        isHovered = false;
        return;
    }
    shown = waiting.front();
    waiting.erase(waiting.begin());
    left = autoHide;
    nextTick = running + tickLength;
    ++shownCount;
}

void ReferenceModel::tick() {
    if (left && !isHovered) *left -= tickLength;
    nextTick = running + tickLength;
    expireStale();
    if (left && *left <= Duration::zero()) {
        answer(Outcome::expired, {});
        tally["hid itself"] += 1;
    }
}

void ReferenceModel::answer(Outcome outcome, Duration snooze) {
    const Alert answered = *std::exchange(shown, std::nullopt);
    record({answered}, outcome);
    if (outcome == Outcome::snoozed) {
        snoozes[answered.id] = now + snooze;
        look();
    }
    restartWaiting();
    showNext();
}

void ReferenceModel::skipAll() {
    std::vector<Alert> all = std::exchange(waiting, {});
    all.insert(all.begin(), *std::exchange(shown, std::nullopt));
    record(all, Outcome::skipped);
    showNext();
}

void ReferenceModel::startBreak() {
    shown->isOnBreak = true;
    breakEnd = running + std::chrono::seconds(*shown->breakLength);
}

void ReferenceModel::pause(Instant until) {
    pausedUntil = until;
    kept.clear();
    release.reset();
    shown.reset();
    waiting.clear();
    isHovered = false;
    look();
}

void ReferenceModel::resume() {
    pausedUntil.reset();
    look();
}

void ReferenceModel::setHolding(bool holding) {
    const bool hasEnded = isHolding && !holding;
    isHolding = holding;
    if (hasEnded && presence == Presence::present) releaseKept();
}

void ReferenceModel::become(Presence to) {
    presence = to;
    release.reset();
    if (to == Presence::present) {
        if (!isHolding && !kept.empty()) release = running + releaseDelay;
        return;
    }
    // A break that runs goes on; everything else goes back.
    std::vector<Alert> back = std::exchange(waiting, {});
    if (shown && !shown->isOnBreak) {
        back.insert(back.begin(), *std::exchange(shown, std::nullopt));
        isHovered = false;
    }
    for (const Alert& alert : back)
        leaveOrKeep({alert}, to);
}

void ReferenceModel::remindersChanged() {
    days_.clear();
    const auto isGone = [&](const Alert& alert) {
        const Reminder* reminder = find(alert.id);
        return !reminder || (!reminder->isOn && !alert.isOnBreak);
    };
    const auto rewrite = [&](Alert& alert) {
        const Reminder* reminder = find(alert.id);
        alert.title = reminder->displayTitle();
        if (!alert.isOnBreak) alert.breakLength = reminder->durationSeconds;
    };
    for (ReminderEvent& row : rows)
        if (row.reminder && !find(*row.reminder)) row.reminder.reset();
    std::erase_if(waiting, isGone);
    restartWaiting();
    for (Alert& alert : waiting)
        rewrite(alert);
    if (shown && isGone(*shown)) {
        tally["withdrawn"] += 1;
        shown.reset();
        showNext();
    } else if (shown) {
        rewrite(*shown);
    }
    look();
}

void ReferenceModel::hoursChanged() {
    days_.clear();
    look();
}

}  // namespace tendel

#pragma once

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/Calendar.h"
#include "model/KeptReason.h"
#include "model/Presence.h"
#include "model/Reminder.h"
#include "model/ReminderEvent.h"
#include "model/WorkingHours.h"
#include "reminders/ReminderSchedule.h"

namespace tendel {

// The rules by which reminders fire, are shown, kept, counted, answered and recorded, written down
// once more in the plainest way, as what the program is compared with. Motions take no time here,
// and the times of a chain are taken from ScheduleSearch, which has an oracle of its own.
struct ReferenceModel {
    struct Alert {
        ReminderId id{};
        std::string title{};
        Instant due{};
        std::optional<int> breakLength{};
        bool countsWhenAway = false;
        Instant waitingSince{};
        std::optional<Instant> missedAt{};
        std::optional<KeptReason> reason{};
        bool isOnBreak = false;
    };
    struct Firing {
        Instant due{};
        std::vector<ReminderId> reminders{};
    };

    ReferenceModel(const Calendar& with, Instant start, MonotonicInstant since)
        : calendar(with), now(start), running(since) {}

    // The world, which the test changes; what has to `look` again, it says.
    const Calendar& calendar;
    Instant now;               // the wall clock
    MonotonicInstant running;  // the clock that goes on through sleep
    std::vector<Reminder> reminders;
    WorkingHours hours;
    std::optional<Duration> autoHide = std::chrono::seconds(30);
    Presence presence = Presence::present;

    // The scheduler.
    std::optional<Firing> next;
    std::map<ReminderId, Instant> snoozes;
    std::optional<Instant> pausedUntil, lastFired;
    bool isHolding = false;
    std::vector<Alert> kept;
    std::optional<MonotonicInstant> release;
    MonotonicInstant armedAt;

    // The alerts.
    std::optional<Alert> shown;
    std::vector<Alert> waiting;
    std::optional<Duration> left;  // until the shown one hides; absent: never
    MonotonicInstant nextTick, breakEnd;
    bool isHovered = false;
    int shownCount = 0;  // grows each time an alert is shown

    std::vector<ReminderEvent> rows;
    // What became of firings and alerts, for the test to see that all of it occurred.
    std::map<std::string, int> tally;

    // What happens next, by the clock that goes on: the next firing, the end of the pause, the
    // release of what is kept, the end of the break, or a tick of the shown alert. Of two at one
    // moment the one named first comes first.
    using Task = std::pair<MonotonicInstant, std::function<void()>>;
    std::optional<Task> nextTask() {
        std::optional<Task> first;
        const auto consider = [&](MonotonicInstant at, std::function<void()> task) {
            if (!first || at < first->first) first = {at, std::move(task)};
        };
        const auto onTheWall = [&](Instant at) { return std::max(running + (at - now), armedAt); };
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
            consider(breakEnd, [this] { answer(Outcome::done); });
        } else if (shown && left) {
            consider(nextTick, [this] { tick(); });
        } else if (shown && !waiting.empty()) {
            const auto oldest = std::ranges::min(waiting, {}, &Alert::waitingSince).waitingSince;
            consider(running + (oldest + longestWait + Duration(1) - now), [this] { tick(); });
        }
        return first;
    }

    // Lets time pass until `end` or until another alert is shown.
    void passUntil(MonotonicInstant end) {
        const int before = shownCount;
        for (auto task = nextTask(); task && task->first <= end;) {
            passTime(std::max(task->first, running) - running);
            // Everything of this one moment, then a stop when there is something new to answer.
            task->second();
            task = nextTask();
            if (shownCount != before && !(task && task->first <= running)) return;
        }
        passTime(end - running);
    }
    void passTime(Duration span) {
        now += span;
        running += span;
    }
    void sleep(Duration span) {
        passTime(span);
        for (auto task = nextTask(); task && task->first <= running; task = nextTask())
            task->second();
    }
    void setClock(Instant to) {
        now = to;
        restartWaiting();
        look();
        passUntil(running);
    }

    const Reminder* find(ReminderId id) const {
        const auto found = std::ranges::find(reminders, id, &Reminder::id);
        return found != reminders.end() ? &*found : nullptr;
    }
    Alert alertOf(const Reminder& reminder, Instant due) const {
        return {reminder.id,
                reminder.displayTitle(),
                due,
                reminder.durationSeconds,
                reminder.skipsWhenAway(),
                now};
    }

    std::optional<Firing> firstDueAfter(Instant t) const {
        ScheduleSearch search(calendar, hours);
        std::map<Instant, std::vector<ReminderId>> due;
        for (const Reminder& reminder : reminders) {
            if (!reminder.isOn) continue;
            const auto snooze = snoozes.find(reminder.id);
            const auto at = snooze == snoozes.end() ? search.nextFireDate(reminder, t)
                                                    : std::optional(snooze->second);
            if (at) due[*at].push_back(reminder.id);
        }
        if (due.empty()) return std::nullopt;
        return Firing{due.begin()->first, due.begin()->second};
    }

    void look(std::optional<Instant> justFired = {}) {
        if (!justFired && next && !pausedUntil && next->due <= now) return fire();
        if (pausedUntil && now >= *pausedUntil) pausedUntil.reset();

        // After a firing on time, whatever else fell due since is still to come; otherwise only the
        // future counts.
        Instant from = justFired && now - *justFired <= greatestLateness ? *justFired : now;
        if (pausedUntil) from = std::max(from, *pausedUntil);
        // A clock that was corrected a little does not fire again what has fired.
        if (lastFired && *lastFired - now > correction) lastFired.reset();
        if (lastFired) from = std::max(from, *lastFired);

        std::erase_if(snoozes, [&](const auto& snooze) {
            const Reminder* reminder = find(snooze.first);
            return snooze.second <= from || !reminder || !reminder->isOn;
        });
        next = firstDueAfter(from);
        armedAt = running;
    }

    void fire() {
        const Firing firing = *std::exchange(next, std::nullopt);
        lastFired = firing.due;
        if (now - firing.due > greatestLateness) {
            tally["slept through"] += 1;
        } else {
            std::vector<Alert> alerts;
            for (const ReminderId id : firing.reminders)
                alerts.push_back(alertOf(*find(id), firing.due));
            if (presence != Presence::present) {
                leaveOrKeep(alerts);
            } else if (isHolding) {
                for (const Alert& alert : alerts)
                    keep(alert, KeptReason::focus);
            } else {
                present(alerts);
            }
        }
        look(firing.due);
    }

    void keep(Alert alert, KeptReason reason) {
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
    void leaveOrKeep(const std::vector<Alert>& alerts) {
        for (const Alert& alert : alerts) {
            if (presence == Presence::busyCall)
                keep(alert, KeptReason::call);
            else if (presence == Presence::busyPresentation)
                keep(alert, KeptReason::presentation);
            else if (!alert.countsWhenAway)
                keep(alert, KeptReason::away);
            else
                record({alert}, Outcome::breakTaken);
        }
    }
    void releaseKept() {
        release.reset();
        std::vector<Alert> alerts;
        for (const Alert& old : std::exchange(kept, {})) {
            const Reminder* reminder = find(old.id);
            if (!reminder || !reminder->isOn) continue;
            alerts.push_back(alertOf(*reminder, *old.missedAt));
            alerts.back().missedAt = old.missedAt;
            alerts.back().reason = old.reason;
            tally["released"] += 1;
        }
        present(alerts);
    }

    void present(const std::vector<Alert>& alerts) {
        for (const Alert& alert : alerts) {
            if (shown && shown->id == alert.id) {
                record({alert}, Outcome::expired);
                tally["fired while shown"] += 1;
                continue;
            }
            const auto older = std::ranges::find(waiting, alert.id, &Alert::id);
            if (older != waiting.end()) {
                record({*older}, Outcome::expired);
                tally["fired while waiting"] += 1;
                waiting.erase(older);
            }
            waiting.push_back(alert);
        }
        if (!shown) showNext();
    }
    void record(const std::vector<Alert>& alerts, Outcome outcome) {
        for (const Alert& alert : alerts) {
            const Reminder* reminder = find(alert.id);
            if (!reminder) continue;
            tally[std::string(rawValue(outcome))] += 1;
            ReminderEvent& row = rows.emplace_back();
            row.reminder = reminder->id;
            row.fireDate = alert.due;
            row.respondedAt = now;
            row.outcomeRaw = rawValue(outcome);
            row.reminderTitle = reminder->displayTitle();
            row.kindRaw = reminder->kind() == ReminderKind::private_ ? "private" : "work";
        }
    }
    void restartWaiting() {
        for (Alert& alert : waiting)
            alert.waitingSince = now;
    }
    void expireStale() {
        const auto stale = std::ranges::stable_partition(
            waiting, [&](const Alert& alert) { return now - alert.waitingSince <= longestWait; });
        tally["stale"] += int(stale.size());
        record({stale.begin(), stale.end()}, Outcome::expired);
        waiting.erase(stale.begin(), stale.end());
    }
    void showNext() {
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
    void tick() {
        if (left && !isHovered) *left -= tickLength;
        nextTick = running + tickLength;
        expireStale();
        if (left && *left <= Duration::zero()) {
            answer(Outcome::expired);
            tally["hid itself"] += 1;
        }
    }

    // The user.
    void answer(Outcome outcome) {
        const Alert answered = *std::exchange(shown, std::nullopt);
        record({answered}, outcome);
        if (outcome == Outcome::snoozed) {
            snoozes[answered.id] = now + snoozeLength;
            look();
        }
        restartWaiting();
        showNext();
    }
    void skipAll() {
        std::vector<Alert> all = std::exchange(waiting, {});
        all.insert(all.begin(), *std::exchange(shown, std::nullopt));
        record(all, Outcome::skipped);
        showNext();
    }
    void startBreak() {
        shown->isOnBreak = true;
        breakEnd = running + std::chrono::seconds(*shown->breakLength);
    }
    void pause(Instant until) {
        pausedUntil = until;
        kept.clear();
        release.reset();
        shown.reset();
        waiting.clear();
        isHovered = false;
        look();
    }
    void resume() {
        pausedUntil.reset();
        look();
    }
    void setHolding(bool holding) {
        const bool hasEnded = isHolding && !holding;
        isHolding = holding;
        if (hasEnded && presence == Presence::present) releaseKept();
    }
    void become(Presence to) {
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
        leaveOrKeep(back);
    }

    void remindersChanged() {
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
        std::ranges::for_each(waiting, rewrite);
        if (shown && isGone(*shown)) {
            tally["withdrawn"] += 1;
            shown.reset();
            showNext();
        } else if (shown) {
            rewrite(*shown);
        }
        look();
    }

private:
    static constexpr Duration longestWait = std::chrono::minutes(5);
    static constexpr Duration correction = std::chrono::minutes(5);
    static constexpr Duration greatestLateness = std::chrono::seconds(60);
    static constexpr Duration snoozeLength = std::chrono::minutes(5);
    static constexpr Duration releaseDelay = std::chrono::seconds(3);
    static constexpr Duration tickLength = std::chrono::milliseconds(250);
};

}  // namespace tendel

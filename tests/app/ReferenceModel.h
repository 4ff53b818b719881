#pragma once

#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Calendar.h"
#include "model/KeptReason.h"
#include "model/Presence.h"
#include "model/Reminder.h"
#include "model/ReminderEvent.h"
#include "model/WorkingHours.h"

namespace tendel {

// The rules by which reminders fire, are shown, kept, counted, answered and recorded, written down
// once more in the plainest way, as what the program is compared with. Motions take no time here.
struct ReferenceModel {
    struct Alert {
        ReminderId id;
        std::string title;
        Instant due;
        std::optional<int> breakLength;
        bool countsWhenAway = false;
        std::optional<Instant> missedAt;
        std::optional<KeptReason> reason;
        Instant waitingSince;
        bool isOnBreak = false;
    };
    struct Firing {
        Instant due;
        std::vector<ReminderId> reminders;
    };

    ReferenceModel(const Calendar& with, Instant start, MonotonicInstant since)
        : calendar(with), now(start), running(since) {}

    // The world.
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
    std::optional<Instant> pausedUntil;
    bool isHolding = false;
    std::vector<Alert> kept;
    std::optional<MonotonicInstant> release;
    std::optional<Instant> lastFired;

    // The alerts.
    std::optional<Alert> shown;
    std::vector<Alert> waiting;
    std::optional<Duration> left;  // until the shown one hides; absent: never
    MonotonicInstant nextTick;
    MonotonicInstant breakEnd;
    bool isHovered = false;
    int shownCount = 0;  // grows each time an alert is shown

    std::vector<ReminderEvent> rows;
    std::map<std::string, int>
        tally;  // what became of firings and alerts, for the test to see that all of it occurred

    // Time.
    // Lets it pass until `end` or until another alert is shown.
    void passUntil(MonotonicInstant end);
    void sleep(Duration span);
    void setClock(Instant to);
    void zoneChanged();
    // The user.
    void answer(Outcome outcome, Duration snooze);
    void skipAll();
    void startBreak();
    void pause(Instant until);
    void resume();
    void setHolding(bool holding);
    void become(Presence to);
    // The store and the settings; `reminders` and `hours` are changed before.
    void remindersChanged();
    void hoursChanged();

private:
    using Task = std::function<void()>;
    std::optional<std::pair<MonotonicInstant, Task>> nextTask();
    const Reminder* find(ReminderId id) const;
    Alert alertOf(const Reminder& reminder, Instant due) const;
    void rebuildDays();
    const std::vector<std::pair<Instant, ReminderId>>& chainTimes(const DayInterval& day);
    std::optional<Firing> firstDueAfter(Instant t);
    void look(std::optional<Instant> justFired = {});
    void fire();
    void keep(Alert alert, KeptReason reason);
    void leaveOrKeep(const std::vector<Alert>& alerts, Presence why);
    void releaseKept();
    void present(std::vector<Alert> alerts);
    void record(const std::vector<Alert>& alerts, Outcome outcome);
    void restartWaiting();
    void expireStale();
    void showNext();
    void tick();

    std::map<CivilDay, std::vector<std::pair<Instant, ReminderId>>> days_;
    MonotonicInstant armedAt_;
};

}  // namespace tendel

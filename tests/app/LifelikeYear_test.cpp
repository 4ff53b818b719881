#include <gtest/gtest.h>

#include <map>
#include <random>
#include <set>

#include "reminders/ReminderSchedule.h"
#include "support/FakeDesktop.h"
#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// An alert is its reminder and the instant at which it fell due.
using Alerts = std::multiset<std::pair<ReminderId, Instant>>;
using Firings = std::map<Instant, std::set<ReminderId>>;

// Forty reminders, and a person who answers, leaves, works, changes their mind and their clocks for
// a year. Whatever meets whatever, what fires next is what a search from scratch finds, and what
// has fired is shown, waits or is kept until there is exactly one record of it.
class LifelikeYear : public ::testing::TestWithParam<unsigned>,
                     protected test::ReminderServices,
                     protected ReminderAlertPresenting {
protected:
    LifelikeYear() : ReminderServices("2026-01-01T00:00:00Z") {
        scheduler.presenter = this;
        controller.model().speed = 1e9;  // motions take no time
        for (int i = 0; i < 40; ++i)
            insert(randomReminder());
        scheduler.start();
        happen([] {});
    }

    // Between the scheduler and the alerts.
    void present(const Upcoming& upcoming) override {
        EXPECT_TRUE(isFree() && !pausedUntil) << "shown at " << formatIso8601(loop.now());
        controller.present(upcoming);
    }
    void dismissAll() override { controller.dismissAll(); }

    bool isFree() const {
        return presence == Presence::present && !*scheduler.isHoldingReminders();
    }
    int any(int from, int to) { return std::uniform_int_distribution(from, to)(random); }
    bool chance(double probability) { return std::bernoulli_distribution(probability)(random); }
    Duration span(double from, double to) {
        return seconds(std::uniform_real_distribution(from, to)(random));
    }

    // Everything that is due and has no record yet.
    Alerts open() const {
        Alerts all;
        const auto& [current, waiting] = controller.queue();
        if (current) all.emplace(*current->reminderId(), current->fireDate);
        for (const auto& entry : waiting)
            all.emplace(*entry.reminderId(), entry.fireDate);
        for (const auto& item : *scheduler.kept())
            all.emplace(item.id, *item.missedAt);
        return all;
    }
    std::map<ReminderId, KeptReason> reasons() const {
        std::map<ReminderId, KeptReason> all;
        for (const auto& item : *scheduler.kept())
            all.emplace(item.id, *item.keptReason);
        return all;
    }

    // The first of them alone.
    Firings firstAfter(Instant t) {
        std::erase_if(snoozes, [&](const auto& snooze) {
            const Reminder* reminder = store->find(snooze.first);
            return snooze.second <= t || !reminder || !reminder->isOn;
        });
        ScheduleSearch search(calendar, *settings.workingHours);
        Firings due;
        for (const Reminder& reminder : store->reminders()) {
            if (!reminder.isOn) continue;
            const auto snooze = snoozes.find(reminder.id);
            const auto at = snooze == snoozes.end() ? search.nextFireDate(reminder, t)
                                                    : std::optional(snooze->second);
            if (at) due[*at].insert(reminder.id);
        }
        if (!due.empty()) due.erase(std::next(due.begin()), due.end());
        return due;
    }
    // What must have fired by now; after what was slept through only the future counts.
    Alerts fired() {
        const Instant now = loop.now();
        Alerts all;
        while (!pausedUntil && !next.empty() && next.begin()->first <= now) {
            lastFired = next.begin()->first;
            if (now - *lastFired > 60s) {
                tally["slept through"] += 1;
                break;
            }
            for (const ReminderId id : next.begin()->second)
                all.emplace(id, *lastFired);
            next = firstAfter(*lastFired);
        }
        if (pausedUntil && *pausedUntil <= now) pausedUntil.reset();
        // A clock that was corrected a little does not fire again what has fired.
        if (lastFired && *lastFired - now > 5min) lastFired.reset();
        next = firstAfter(std::max({now, lastFired.value_or(now), pausedUntil.value_or(now)}));
        return all;
    }

    // Does something, or lets time pass, and holds what came of it against the rules: the records
    // are of these outcomes and of alerts that were there, and the others are there still.
    void happen(const std::function<void()>& what, std::string_view outcomes = "") {
        Alerts missing = open();
        const auto reasonsBefore = reasons();
        what();
        loop.runPending();
        missing.merge(fired());
        const std::string now = " at " + formatIso8601(loop.now());
        const auto take = [&](ReminderId id, Instant due, std::string_view how) {
            const auto alert = missing.find({id, due});
            if (alert != missing.end())
                missing.erase(alert);
            else
                ADD_FAILURE() << id.value << " of " << formatIso8601(due) << " is " << how << now;
        };
        store->visitEvents(lastRecord, [&](const Store::EventRow& row) {
            lastRecord = row.id;
            take(*row.reminder, row.fireDate, row.outcomeRaw);
            EXPECT_NE(outcomes.find(row.outcomeRaw), outcomes.npos) << row.outcomeRaw << now;
            const Reminder& reminder = *store->find(*row.reminder);
            EXPECT_EQ(row.reminderTitle, reminder.title) << now;
            EXPECT_EQ(row.kindRaw, rawValue(reminder.kind())) << now;
            if (row.outcomeRaw == "breakTaken" && presence == Presence::away) {
                EXPECT_TRUE(reminder.skipsWhenAway()) << now;
            }
            tally[std::string(row.outcomeRaw)] += 1;
        });
        for (const auto& [id, due] : open())
            take(id, due, "there");

        const auto kept = reasons();
        for (const auto& [id, due] : missing) {
            const Reminder* reminder = store->find(id);
            const bool isMerged = !isFree() && kept.contains(id);
            EXPECT_TRUE(pausedUntil || isMerged || !reminder || !reminder->isOn)
                << id.value << " of " << formatIso8601(due) << " is lost" << now;
            tally["withdrawn"] += 1;
        }
        const auto reasonNow = presence == Presence::away               ? KeptReason::away
                               : presence == Presence::busyCall         ? KeptReason::call
                               : presence == Presence::busyPresentation ? KeptReason::presentation
                                                                        : KeptReason::focus;
        for (const auto& [id, reason] : kept) {
            const auto before = reasonsBefore.find(id);
            EXPECT_GE(reason, before == reasonsBefore.end() ? reasonNow : before->second) << now;
            if (before == reasonsBefore.end()) tally["kept " + std::to_string(int(reason))] += 1;
        }
        const bool isReleased = isFree() && loop.monotonicNow() >= presentSince + 3s;
        EXPECT_TRUE(kept.empty() || !isReleased) << now;
        const auto& [current, waiting] = controller.queue();
        const bool isOnBreak = current && current->breakEndsAt;
        EXPECT_TRUE(waiting.empty() || (current && presence == Presence::present)) << now;
        EXPECT_TRUE(!current || isOnBreak || presence == Presence::present) << now;
        for (const auto& entry : waiting) {
            EXPECT_GE(entry.waitingSince, restarted) << now;
            EXPECT_TRUE(isOnBreak || loop.now() - entry.waitingSince <= 5min + 250ms) << now;
        }
        EXPECT_TRUE(!pausedUntil || open().empty()) << now;
        EXPECT_EQ(*scheduler.pausedUntil(), pausedUntil) << now;
        Firings upcoming;
        if (const auto& told = *scheduler.upcoming())
            for (const auto& item : told->items)
                upcoming[told->fireDate].insert(item.id);
        EXPECT_TRUE(upcoming == next) << "another firing is next" << now;
    }

    // Until something comes up where nothing was.
    void live(Duration length) {
        const MonotonicInstant end = loop.monotonicNow() + length;
        const bool wasShown = controller.queue().current.has_value();
        while (loop.monotonicNow() < end && !HasFailure()) {
            Duration step = end - loop.monotonicNow();
            if (!next.empty()) step = std::min(step, next.begin()->first - loop.now());
            if (pausedUntil) step = std::min(step, *pausedUntil - loop.now());
            happen([&] { loop.advance(step); }, "expired done breakTaken");
            if (!wasShown && controller.queue().current) return;
        }
    }

    Reminder randomReminder() {
        Reminder made;
        made.title = "R" + std::to_string(++titles);
        made.setKind(chance(0.6) ? ReminderKind::work : ReminderKind::private_);
        made.setStart({any(0, 23), chance(0.5) ? 0 : any(0, 59)});
        made.intervalMinutes = chance(0.2) ? any(30, 120) : any(120, 1440);
        if (chance(0.03)) {  // a dense one, late in the evening
            made.setStart({23, any(0, 55)});
            made.intervalMinutes = any(0, 5);
        }
        if (chance(0.4)) made.durationSeconds = chance(0.25) ? any(1, 3) : any(10, 900);
        if (chance(0.3)) made.skipsWhenAwayChoice = chance(0.5);
        made.isOn = chance(0.95);
        return made;
    }
    void editReminders() {
        const auto count = int(store->reminders().size());
        ReminderId chosen = store->reminders()[std::size_t(any(0, count - 1))].id;
        if (const auto& shown = controller.queue().current; shown && chance(0.4))
            chosen = *shown->reminderId();
        const int what = any(0, 4);
        if (what == 0 && count >= 36) return remove(chosen);
        if (what == 1 && count < 44) return static_cast<void>(insert(randomReminder()));
        edit(chosen, [&](Reminder& reminder) {
            if (what == 2)
                reminder = randomReminder();
            else if (what == 3)
                reminder.isOn = !reminder.isOn;
            else
                reminder.title += "'";
            reminder.id = chosen;
        });
    }
    void become(Presence to) {
        if (presence != to) presentSince = loop.monotonicNow();
        presence = to;
        scheduler.presenceDidChange(to);
        if (isBusy(to)) controller.userGotBusy(to);
        if (to == Presence::away) controller.userWentAway();
    }
    void pauseOrResume() {
        if (pausedUntil && chance(0.7)) {
            pausedUntil.reset();
            return scheduler.resume();
        }
        pausedUntil = chance(0.3) ? calendar.dayAfter(calendar.day(loop.now())).start
                                  : loop.now() + std::chrono::minutes(30 << any(0, 2));
        scheduler.pause(*pausedUntil);
    }
    // One thing that happens in a life.
    void somethingHappens() {
        constexpr std::string_view inTime = "expired done breakTaken";
        const int what = any(0, 99);
        if (what < 30) {
            const Presence states[] = {Presence::away, Presence::away, Presence::busyCall,
                                       Presence::busyPresentation};
            const bool leaves = presence == Presence::present || chance(0.2);
            happen([&] { become(leaves ? states[any(0, 3)] : Presence::present); }, "breakTaken");
        } else if (what < 45) {
            happen([&] { scheduler.setHoldingReminders(!*scheduler.isHoldingReminders()); });
        } else if (what < 65) {
            happen([&] { editReminders(); });
        } else if (what < 72) {
            happen([&] { pauseOrResume(); });
        } else if (what < 82) {
            happen([&] { loop.sleep(chance(0.4) ? span(1, 90) : span(600, 36000)); }, inTime);
        } else if (what < 90) {
            const Duration step = chance(0.6) ? span(0, 300) : span(310, 3 * 3600);
            restarted = loop.now() + (chance(0.5) ? step : -step);
            happen([&] { loop.setWallClock(restarted); }, inTime);
        } else if (what < 93) {
            const char* zones[] = {"Europe/Berlin", "America/New_York", "Australia/Lord_Howe",
                                   "Africa/Cairo"};
            calendar.setZone(zones[any(0, 3)]);
            happen([&] { loop.changeTimeZone(); });
        } else if (what < 96) {
            const WorkingHours hours{
                .start = {any(6, 11), any(0, 59)},
                .end = {any(12, 20), 0},
                .workdays = chance(0.2) ? std::set<int>{} : std::set{2, 3, 4, 5, any(1, 7)}};
            happen([&] { settings.workingHours.set(hours); });
        } else {
            const int choices[] = {0, 10, 30, 60};
            settings.alertAutoHide.set(*alertAutoHide(choices[any(0, 3)]));
        }
    }
    void answer() {
        const auto& actions = controller.actions();
        const auto shown = *controller.queue().current;
        const int what = any(0, 99);
        if (what < 15) return controller.model().setHovered(chance(0.5));
        if (what < 40) return actions.start();
        const auto [outcome, action] = what < 60   ? std::pair("done", &actions.done)
                                       : what < 73 ? std::pair("snoozed", &actions.snooze)
                                       : what < 86 ? std::pair("skipped", &actions.skip)
                                       : what < 93 || !shown.skipsWhenAway || shown.breakEndsAt
                                           ? std::pair("skipped", &actions.skipAll)
                                           : std::pair("breakTaken", &actions.hadBreak);
        const int before = tally[outcome];
        if (action == &actions.snooze) snoozes[*shown.reminderId()] = loop.now() + 5min;
        happen([&, act = action] { (*act)(), restarted = loop.now(); }, outcome);
        EXPECT_GT(tally[outcome], before);
    }

    std::mt19937 random{GetParam()};
    int titles = 0;
    test::FakeScreens screens;
    test::FakeSounds sounds;
    NotchAlertController controller{settings, *store, loop, calendar, scheduler, screens, sounds};
    Firings next;
    std::map<ReminderId, Instant> snoozes;
    std::optional<Instant> pausedUntil, lastFired;
    Instant restarted;  // when everything that waited began to wait anew
    MonotonicInstant presentSince;
    std::int64_t lastRecord = 0;
    std::map<std::string, int> tally;  // of what became of alerts
};

TEST_P(LifelikeYear, LosesAndDoublesNothing) {
    // The first is the whole year, the others are shorter stretches with other luck.
    const bool isWholeYear = GetParam() == 1;
    const MonotonicInstant end = loop.monotonicNow() + (isWholeYear ? 365 : 60) * 24h;
    while (loop.monotonicNow() < end && !HasFailure()) {
        const auto shown = controller.queue().current;
        live(shown || chance(0.3) ? span(1, 20) : span(60, 6 * 3600));
        const auto& current = controller.queue().current;
        if (shown && current && current->id == shown->id && chance(0.4))
            answer();
        else if (!current || chance(0.15))
            somethingHappens();
    }
    if (!isWholeYear) return;
    EXPECT_EQ(tally.size(), 11U) << "five outcomes, four reasons, and these two";
    for (const auto& [what, count] : tally)
        EXPECT_GE(count, 5) << what << " hardly ever came about";
}

INSTANTIATE_TEST_SUITE_P(Seeds, LifelikeYear, ::testing::Range(1u, 5u));

}  // namespace
}  // namespace tendel

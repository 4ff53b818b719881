#include <gtest/gtest.h>

#include <random>
#include <set>

#include "ReferenceModel.h"
#include "support/FakeDesktop.h"
#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// Forty reminders, and a person who answers, leaves, works, changes their mind and their clocks for
// a year.
class LifelikeYear : public ::testing::TestWithParam<unsigned>,
                     protected test::ReminderServices,
                     protected ReminderAlertPresenting {
protected:
    LifelikeYear() : ReminderServices("2026-01-01T00:00:00Z") {
        scheduler.presenter = this;
        // The model's motions take no time.
        controller.model().speed = 1e9;
        for (int i = 0; i < 40; ++i)
            addReminder();
        scheduler.start();
        model.look();
    }

    // Between the scheduler and the alerts, to see that no instant is handed over twice.
    void present(const Upcoming& upcoming) override {
        for (const auto& item : upcoming.items)
            if (!item.missedAt && !handedOver.emplace(upcoming.fireDate, item.id).second)
                ADD_FAILURE() << item.title << " fired twice at "
                              << formatIso8601(upcoming.fireDate);
        controller.present(upcoming);
    }
    void dismissAll() override { controller.dismissAll(); }

    int any(int from, int to) { return std::uniform_int_distribution(from, to)(random); }
    bool chance(double probability) { return std::bernoulli_distribution(probability)(random); }
    // A span that no other event of the same day ends with to the microsecond.
    Duration span(double from, double to) {
        return seconds(std::uniform_real_distribution(from, to)(random)) +
               Duration(any(1, 700'000));
    }

    Reminder randomReminder() {
        Reminder made;
        made.title = "R" + std::to_string(++titles);
        made.setKind(chance(0.6) ? ReminderKind::work : ReminderKind::private_);
        made.setStart({any(0, 23), chance(0.5) ? 0 : any(0, 59)});
        made.intervalMinutes = chance(0.03)  ? any(0, 5)
                               : chance(0.2) ? any(30, 120)
                                             : any(120, 1440);
        // Short ones only late in the evening.
        if (made.intervalMinutes < 6) made.setStart({23, any(0, 55)});
        if (chance(0.4)) made.durationSeconds = any(0, 3) == 0 ? any(1, 3) : any(10, 900);
        if (chance(0.3)) made.skipsWhenAwayChoice = chance(0.5);
        made.isOn = chance(0.95);
        return made;
    }
    void addReminder() {
        Reminder made = randomReminder();
        made.id = insert(made);
        model.reminders.push_back(made);
        model.remindersChanged();
    }
    void editReminders() {
        const auto index = std::size_t(any(0, int(model.reminders.size()) - 1));
        // Rather the one that is shown, where there is one.
        Reminder* chosen = &model.reminders[index];
        if (model.shown && chance(0.4))
            for (Reminder& reminder : model.reminders)
                if (reminder.id == model.shown->id) chosen = &reminder;
        Reminder changed = *chosen;
        const int what = any(0, 4);
        if (what == 4) {
            if (model.reminders.size() < 44) addReminder();
            return;
        }
        if (what == 0) {
            changed = randomReminder();
            changed.id = chosen->id;
        } else if (what == 1) {
            changed.isOn = !changed.isOn;
        } else if (what == 2) {
            changed.title += "'";
        }
        if (what == 3 && model.reminders.size() >= 36) {
            remove(changed.id);
            std::erase_if(model.reminders, [&](auto& other) { return other.id == changed.id; });
        } else {
            *chosen = changed;
            save([&](Store::Writer& writer) { writer.update(changed); });
        }
        model.remindersChanged();
    }

    void become(Presence to) {
        presence = to;
        scheduler.presenceDidChange(to);
        if (isBusy(to)) controller.userGotBusy(to);
        if (to == Presence::away) controller.userWentAway();
        model.become(to);
    }
    void setClock(Instant to) {
        // Far back, the same instants come again.
        if (loop.now() - to > 5min)
            std::erase_if(handedOver, [&](const auto& firing) { return firing.first >= to; });
        loop.setWallClock(to);
        model.setClock(to);
    }

    // One thing that happens in a life; some of them take effect on both sides in different words.
    void somethingHappens() {
        constexpr int editing = 50;
        // Nothing else takes an alert down again, and alerts do not last.
        const int what = model.shown && chance(0.3) ? editing : any(0, 99);
        if (what < 30) {
            const Presence states[] = {Presence::away, Presence::away, Presence::busyCall,
                                       Presence::busyPresentation};
            become(presence == Presence::present || chance(0.2) ? states[any(0, 3)]
                                                                : Presence::present);
        } else if (what < 45) {
            scheduler.setHoldingReminders(!model.isHolding);
            model.setHolding(!model.isHolding);
        } else if (what < 65) {
            editReminders();
        } else if (what < 72) {
            if (model.pausedUntil && chance(0.7)) {
                scheduler.resume();
                model.resume();
            } else {
                const Instant until = chance(0.3)
                                          ? calendar.dayAfter(calendar.day(loop.now())).start
                                          : loop.now() + std::chrono::minutes(30 << any(0, 2));
                scheduler.pause(until);
                model.pause(until);
            }
        } else if (what < 82) {
            const Duration slept = chance(0.4) ? span(1, 90) : span(600, 36000);
            loop.sleep(slept);
            model.sleep(slept);
        } else if (what < 90) {
            const Duration step = chance(0.6)   ? span(0, 70)
                                  : chance(0.5) ? span(0, 300)
                                                : span(310, 3 * 3600);
            setClock(chance(0.5) ? loop.now() + step : loop.now() - step);
        } else if (what < 92) {
            const char* zones[] = {"Europe/Berlin", "America/New_York", "Australia/Lord_Howe",
                                   "Africa/Cairo"};
            calendar.setZone(zones[any(0, 3)]);
            loop.changeTimeZone();
            loop.runPending();
            model.look();
        } else if (what < 94) {
            const WorkingHours hours{
                .start = {any(6, 11), any(0, 59)},
                .end = {any(12, 20), 0},
                .workdays = chance(0.2) ? std::set<int>{} : std::set{2, 3, 4, 5, any(1, 7)}};
            model.hours = hours;
            settings.workingHours.set(hours);
            model.look();
        } else {
            const int choices[] = {0, 10, 30, 60};
            settings.alertAutoHide.set(*alertAutoHide(choices[any(0, 3)]));
            model.autoHide = autoHideTime(*settings.alertAutoHide);
        }
    }

    void liveUntil(MonotonicInstant happens) {
        while (loop.monotonicNow() < happens && !HasFatalFailure()) {
            if (model.shown && model.shownCount != plannedFor) planAnswer();
            if (!model.shown) answerAt.reset();
            // An answer that was to come during a sleep comes after it.
            model.passUntil(answerAt ? std::clamp(*answerAt, model.running, happens) : happens);
            loop.advance(model.running - loop.monotonicNow());
            ASSERT_NO_FATAL_FAILURE(compare());
            if (!answerAt || loop.monotonicNow() < *answerAt) continue;
            answerAt.reset();
            if (!model.shown || model.shownCount != plannedFor) continue;
            answer();
            loop.runPending();
            ASSERT_NO_FATAL_FAILURE(compare());
        }
    }

    // What the person does about an alert that has just come up, and when; again with a break that
    // was started.
    void planAnswer() {
        plannedFor = model.shownCount;
        const int what = any(0, 99);
        if (what < 55) {
            answerAt = loop.monotonicNow() + span(1, 9);
        } else if (what < 75) {
            answerAt = loop.monotonicNow() + span(10, 400);
        } else {
            answerAt.reset();  // sees nothing of it, or not before somethingHappens
            if (!model.left) answerAt = loop.monotonicNow() + span(100, 3000);
        }
        if (chance(0.2)) hover(true);
        if (model.isHovered && !answerAt) answerAt = loop.monotonicNow() + span(10, 700);
    }
    void hover(bool isHovered) {
        controller.model().setHovered(isHovered);
        model.isHovered = isHovered;
    }
    void answer() {
        const auto& actions = controller.actions();
        const int what = any(0, 99);
        if (model.isHovered && what < 20) {
            hover(false);
            if (!model.left) answerAt = loop.monotonicNow() + span(1, 30);
        } else if (!model.shown->isOnBreak && model.shown->breakLength.value_or(0) > 0 &&
                   what < 60) {
            actions.start();
            model.startBreak();
            if (chance(0.3)) answerAt = loop.monotonicNow() + span(1, 60);
        } else if (what < 75) {
            actions.done();
            model.answer(Outcome::done);
        } else if (what < 83) {
            actions.snooze();
            model.answer(Outcome::snoozed);
        } else if (what < 90) {
            actions.skip();
            model.answer(Outcome::skipped);
        } else if (what < 95) {
            actions.skipAll();
            model.skipAll();
        } else {
            actions.hadBreak();
            model.answer(Outcome::breakTaken);
        }
    }

    // Everything that either side holds, in the same words.
    static std::string inWords(const ReferenceModel::Alert& alert) {
        std::string words =
            alert.title + " due " + formatIso8601(alert.due) + (alert.isOnBreak ? " on break" : "");
        if (alert.missedAt)
            words += " missed " + formatIso8601(*alert.missedAt) + " " +
                     std::to_string(int(*alert.reason));
        return words + "\n";
    }
    static std::string inWords(const AlertQueue::Entry& entry) {
        return inWords({.title = entry.title,
                        .due = entry.fireDate,
                        .missedAt = entry.missedAt,
                        .reason = entry.keptReason,
                        .isOnBreak = entry.breakEndsAt.has_value()});
    }
    static std::string inWords(const char* what, ReminderId id, const std::optional<Instant>& at) {
        return at ? what + std::to_string(id.value) + " " + formatIso8601(*at) + "\n" : "";
    }
    std::string ofModel() const {
        std::string words = "shown: " + (model.shown ? inWords(*model.shown) : "");
        for (const auto& alert : model.waiting)
            words += "waits: " + inWords(alert);
        for (const auto& alert : model.kept)
            words +=
                inWords("kept: ", alert.id, alert.missedAt) + std::to_string(int(*alert.reason));
        if (model.next)
            for (const ReminderId id : model.next->reminders)
                words += inWords("next: ", id, model.next->due);
        return words + inWords("paused", {}, model.pausedUntil);
    }
    std::string ofProgram() const {
        const auto& [current, waiting] = controller.queue();
        std::string words = "shown: " + (current ? inWords(*current) : "");
        for (const auto& entry : waiting)
            words += "waits: " + inWords(entry);
        for (const auto& item : *scheduler.kept())
            words +=
                inWords("kept: ", item.id, item.missedAt) + std::to_string(int(*item.keptReason));
        if (const auto& next = *scheduler.upcoming())
            for (const auto& item : next->items)
                words += inWords("next: ", item.id, next->fireDate);
        return words + inWords("paused", {}, *scheduler.pausedUntil());
    }
    void compare() {
        ASSERT_EQ(formatIso8601(loop.now()), formatIso8601(model.now));
        ASSERT_EQ(ofProgram(), ofModel()) << "at " << formatIso8601(loop.now());
    }
    void compareRows() {
        const auto stored = store->events();
        ASSERT_EQ(stored.size(), model.rows.size()) << "at " << formatIso8601(loop.now());
        for (std::size_t i = 0; i < stored.size(); ++i) {
            ReminderEvent expected = model.rows[i];
            expected.id = stored[i].id;
            ASSERT_EQ(stored[i], expected)
                << "row " << i << " at " << formatIso8601(expected.respondedAt);
        }
    }

    std::mt19937 random{GetParam()};
    int titles = 0;
    test::FakeScreens screens;
    test::FakeSounds sounds;
    NotchAlertController controller{settings, *store, loop, calendar, scheduler, screens, sounds};
    ReferenceModel model{calendar, loop.now(), loop.monotonicNow()};
    std::set<std::pair<Instant, ReminderId>> handedOver;
    std::optional<MonotonicInstant> answerAt;
    int plannedFor = 0;
};

TEST_P(LifelikeYear, GoesByTheRules) {
    // The first is the whole year, the others are shorter stretches with other luck.
    const bool isWholeYear = GetParam() == 1;
    const MonotonicInstant end = loop.monotonicNow() + (isWholeYear ? 365 : 60) * 24h;
    MonotonicInstant nextRows = loop.monotonicNow() + 30 * 24h;
    while (loop.monotonicNow() < end && !HasFatalFailure()) {
        liveUntil(loop.monotonicNow() +
                  (model.shown && chance(0.6) ? span(1, 40) : span(60, 6 * 3600)));
        if (HasFatalFailure()) return;
        somethingHappens();
        loop.runPending();
        compare();
        if (loop.monotonicNow() < nextRows) continue;
        nextRows += 30 * 24h;
        compareRows();
    }
    compareRows();
    if (!isWholeYear) return;
    EXPECT_EQ(model.tally.size(), 16u);
    for (const auto& [what, count] : model.tally) {
        EXPECT_GE(count, 5) << what << " hardly ever came about";
        RecordProperty("tally " + what, count);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, LifelikeYear, ::testing::Range(1u, 5u));

}  // namespace
}  // namespace tendel

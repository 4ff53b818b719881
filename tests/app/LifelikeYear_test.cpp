#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <sstream>

#include "ReferenceModel.h"
#include "alerts/NotchAlertController.h"
#include "base/SimulatedEventLoop.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

struct OneScreen : Screens {
    std::vector<ScreenInfo> all() const override {
        return {ScreenInfo{.frame = {0, 0, 1000, 800}}};
    }
    std::optional<std::pair<double, double>> pointer() const override { return std::nullopt; }
};
struct Silence : SystemSounds {
    void play(std::string_view) override {}
};

// Forty reminders, and a person who answers, leaves, works, changes their mind and their clocks for
// a year.
class LifelikeYear : public ::testing::TestWithParam<unsigned>, protected ReminderAlertPresenting {
protected:
    LifelikeYear() {
        scheduler_.presenter = this;
        // The model's motions take no time.
        controller_.model().speed = 1e9;
        for (int i = 0; i < 40; ++i)
            addReminder();
        scheduler_.start();
        model_.hoursChanged();
    }
    ~LifelikeYear() override { std::filesystem::remove_all(folder_); }

    static std::unique_ptr<Store> open(const std::filesystem::path& folder) {
        auto opened = Store::open(folder / "Tendel.store");
        if (!opened) throw std::runtime_error(opened.error());
        return std::move(opened.value());
    }

    // Between the scheduler and the alerts, to see that no instant is handed over twice.
    void present(const Upcoming& upcoming) override {
        for (const auto& item : upcoming.items)
            if (!item.missedAt && !handedOver_.emplace(upcoming.fireDate, item.id).second)
                ADD_FAILURE() << item.title << " fired twice at "
                              << formatIso8601(upcoming.fireDate);
        controller_.present(upcoming);
    }
    void dismissAll() override { controller_.dismissAll(); }

    int any(int from, int to) { return std::uniform_int_distribution(from, to)(random_); }
    bool chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    // A span that no other event of the same day ends with to the microsecond.
    Duration span(double from, double to) {
        return seconds(std::uniform_real_distribution(from, to)(random_)) +
               Duration(any(1, 700'000));
    }

    Reminder randomReminder() {
        Reminder made;
        made.title = "R" + std::to_string(++made_);
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
        ASSERT_TRUE(store_->save([&](Store::Writer& writer) { made.id = writer.insert(made); }));
        model_.reminders.push_back(made);
        model_.remindersChanged();
    }
    void editReminders() {
        const auto index = std::size_t(any(0, int(model_.reminders.size()) - 1));
        // Rather the one that is shown, where there is one.
        Reminder* chosen = &model_.reminders[index];
        if (model_.shown && chance(0.7))
            for (Reminder& reminder : model_.reminders)
                if (reminder.id == model_.shown->id) chosen = &reminder;
        Reminder changed = *chosen;
        switch (any(0, 4)) {
            case 0:
                changed = randomReminder();
                changed.id = chosen->id;
                break;
            case 1:
                changed.isOn = !changed.isOn;
                break;
            case 2:
                changed.title += "'";
                break;
            case 3:
                if (model_.reminders.size() < 36) break;
                ASSERT_TRUE(
                    store_->save([&](Store::Writer& writer) { writer.remove(changed.id); }));
                std::erase_if(model_.reminders,
                              [&](auto& other) { return other.id == changed.id; });
                model_.remindersChanged();
                return;
            default:
                if (model_.reminders.size() < 44) addReminder();
                return;
        }
        *chosen = changed;
        ASSERT_TRUE(store_->save([&](Store::Writer& writer) { writer.update(changed); }));
        model_.remindersChanged();
    }

    void become(Presence to) {
        presence_ = to;
        scheduler_.presenceDidChange(to);
        if (isBusy(to)) controller_.userGotBusy(to);
        if (to == Presence::away) controller_.userWentAway();
        model_.become(to);
    }
    void setClock(Instant to) {
        // Far back, the same instants come again.
        if (loop_.now() - to > 5min)
            std::erase_if(handedOver_, [&](const auto& firing) { return firing.first >= to; });
        loop_.setWallClock(to);
        model_.setClock(to);
    }

    // One thing that happens in a life; some of them take effect on both sides in different words.
    void somethingHappens() {
        const int what = any(0, 99);
        if (what < 30) {
            const Presence states[] = {Presence::away, Presence::away, Presence::busyCall,
                                       Presence::busyPresentation};
            become(presence_ == Presence::present || chance(0.2) ? states[any(0, 3)]
                                                                 : Presence::present);
        } else if (what < 45) {
            scheduler_.setHoldingReminders(!model_.isHolding);
            model_.setHolding(!model_.isHolding);
        } else if (what < 65) {
            editReminders();
        } else if (what < 72) {
            if (model_.pausedUntil && chance(0.7)) {
                scheduler_.resume();
                model_.resume();
            } else {
                const Instant until = chance(0.3)
                                          ? calendar_.dayAfter(calendar_.day(loop_.now())).start
                                          : loop_.now() + std::chrono::minutes(30 << any(0, 2));
                scheduler_.pause(until);
                model_.pause(until);
            }
        } else if (what < 82) {
            const Duration slept = chance(0.4) ? span(1, 90) : span(600, 36000);
            loop_.sleep(slept);
            model_.sleep(slept);
        } else if (what < 90) {
            const Duration step = chance(0.6)   ? span(0, 70)
                                  : chance(0.5) ? span(0, 300)
                                                : span(310, 3 * 3600);
            setClock(chance(0.5) ? loop_.now() + step : loop_.now() - step);
        } else if (what < 92) {
            const char* zones[] = {"Europe/Berlin", "America/New_York", "Australia/Lord_Howe",
                                   "Africa/Cairo"};
            calendar_.setZone(zones[any(0, 3)]);
            loop_.changeTimeZone();
            loop_.runPending();
            model_.zoneChanged();
        } else if (what < 94) {
            const WorkingHours hours{
                .start = {any(6, 11), any(0, 59)},
                .end = {any(12, 20), 0},
                .workdays = chance(0.2) ? std::set<int>{} : std::set{2, 3, 4, 5, any(1, 7)}};
            if (hours != model_.hours) {
                model_.hours = hours;
                settings_.workingHours.set(hours);
                model_.hoursChanged();
            }
        } else {
            const AlertAutoHide choices[] = {AlertAutoHide::after10Seconds,
                                             AlertAutoHide::after30Seconds,
                                             AlertAutoHide::after1Minute, AlertAutoHide::never};
            settings_.alertAutoHide.set(choices[any(0, 3)]);
            model_.autoHide = autoHideTime(*settings_.alertAutoHide);
        }
    }

    void liveUntil(MonotonicInstant happens) {
        while (loop_.monotonicNow() < happens && !HasFatalFailure()) {
            if (model_.shown && model_.shownCount != plannedFor_) planAnswer();
            if (!model_.shown) answerAt_.reset();
            // An answer that was to come during a sleep comes after it.
            model_.passUntil(answerAt_ ? std::clamp(*answerAt_, model_.running, happens) : happens);
            loop_.advance(model_.running - loop_.monotonicNow());
            ASSERT_NO_FATAL_FAILURE(compare());
            if (!answerAt_ || loop_.monotonicNow() < *answerAt_) continue;
            answerAt_.reset();
            if (!model_.shown || model_.shownCount != plannedFor_) continue;
            answer();
            loop_.runPending();
            ASSERT_NO_FATAL_FAILURE(compare());
        }
    }

    // What the person does about an alert that has just come up, and when; again with a break that
    // was started.
    void planAnswer() {
        plannedFor_ = model_.shownCount;
        const int what = any(0, 99);
        if (what < 55) {
            answerAt_ = loop_.monotonicNow() + span(1, 9);
        } else if (what < 75) {
            answerAt_ = loop_.monotonicNow() + span(10, 400);
        } else {
            answerAt_.reset();  // sees nothing of it, or not before somethingHappens
            if (!model_.left) answerAt_ = loop_.monotonicNow() + span(100, 3000);
        }
        if (chance(0.2)) hover(true);
        if (model_.isHovered && !answerAt_) answerAt_ = loop_.monotonicNow() + span(10, 700);
    }
    void hover(bool isHovered) {
        controller_.model().setHovered(isHovered);
        model_.isHovered = isHovered;
    }
    void answer() {
        const auto& actions = controller_.actions();
        const int what = any(0, 99);
        if (model_.isHovered && what < 20) {
            hover(false);
            if (!model_.left) answerAt_ = loop_.monotonicNow() + span(1, 30);
        } else if (!model_.shown->isOnBreak && model_.shown->breakLength.value_or(0) > 0 &&
                   what < 60) {
            actions.start();
            model_.startBreak();
            if (chance(0.3)) answerAt_ = loop_.monotonicNow() + span(1, 60);
        } else if (what < 75) {
            actions.done();
            model_.answer(Outcome::done, {});
        } else if (what < 83) {
            actions.snooze();
            model_.answer(Outcome::snoozed, 5min);
        } else if (what < 90) {
            actions.skip();
            model_.answer(Outcome::skipped, {});
        } else if (what < 95) {
            actions.skipAll();
            model_.skipAll();
        } else {
            actions.hadBreak();
            model_.answer(Outcome::breakTaken, {});
        }
    }

    // Everything that either side holds, in the same words.
    static std::string inWords(const std::string& title, Instant due,
                               const std::optional<Instant>& missedAt,
                               const std::optional<KeptReason>& reason, bool isOnBreak) {
        std::string words = title + " due " + formatIso8601(due) + (isOnBreak ? " on break" : "");
        if (missedAt)
            words += " missed " + formatIso8601(*missedAt) + " " + std::to_string(int(*reason));
        return words + "\n";
    }
    static std::string inWords(const ReferenceModel::Alert& alert) {
        return inWords(alert.title, alert.due, alert.missedAt, alert.reason, alert.isOnBreak);
    }
    static std::string inWords(const AlertQueue::Entry& entry) {
        return inWords(entry.title, entry.fireDate, entry.missedAt, entry.keptReason,
                       entry.breakEndsAt.has_value());
    }
    std::string ofModel() const {
        std::string words = "shown: " + (model_.shown ? inWords(*model_.shown) : "");
        for (const auto& alert : model_.waiting)
            words += "waits: " + inWords(alert);
        for (const auto& alert : model_.kept)
            words += "kept: " + inWords(std::to_string(alert.id.value), {}, alert.missedAt,
                                        alert.reason, false);
        if (model_.next) words += "next: " + formatIso8601(model_.next->due);
        if (model_.next)
            for (const ReminderId id : model_.next->reminders)
                words += " " + std::to_string(id.value);
        if (model_.pausedUntil) words += "\npaused until " + formatIso8601(*model_.pausedUntil);
        return words;
    }
    std::string ofProgram() const {
        const AlertQueue& queue = controller_.queue();
        std::string words = "shown: " + (queue.current ? inWords(*queue.current) : "");
        for (const auto& entry : queue.waiting)
            words += "waits: " + inWords(entry);
        for (const auto& item : scheduler_.kept())
            words += "kept: " + inWords(std::to_string(item.id.value), {}, item.missedAt,
                                        item.keptReason, false);
        const auto& upcoming = *scheduler_.upcoming();
        if (upcoming) words += "next: " + formatIso8601(upcoming->fireDate);
        if (upcoming)
            for (const auto& item : upcoming->items)
                words += " " + std::to_string(item.id.value);
        const auto& until = *scheduler_.pausedUntil();
        if (until) words += "\npaused until " + formatIso8601(*until);
        return words;
    }
    void compare() {
        ASSERT_EQ(formatIso8601(loop_.now()), formatIso8601(model_.now));
        ASSERT_EQ(ofProgram(), ofModel()) << "at " << formatIso8601(loop_.now());
    }
    void compareRows() {
        const auto stored = store_->events();
        ASSERT_EQ(stored.size(), model_.rows.size()) << "at " << formatIso8601(loop_.now());
        for (std::size_t i = 0; i < stored.size(); ++i) {
            ReminderEvent expected = model_.rows[i];
            expected.id = stored[i].id;
            ASSERT_EQ(stored[i], expected)
                << "row " << i << ": " << stored[i].reminderTitle << " " << stored[i].outcomeRaw
                << " at " << formatIso8601(stored[i].respondedAt) << ", not "
                << expected.reminderTitle << " " << expected.outcomeRaw;
        }
    }

    std::mt19937 random_{GetParam()};
    int made_ = 0;
    std::filesystem::path folder_ =
        std::filesystem::path(std::filesystem::exists("/dev/shm") ? "/dev/shm" : "/tmp") /
        ("tendel-lifelike-" + std::to_string(::getpid()));
    Calendar calendar_{"Europe/Berlin", "en_GB"};
    SimulatedEventLoop loop_{*parseIso8601("2026-01-01T00:00:00Z")};
    Defaults defaults_;
    AppSettings settings_{defaults_};
    std::unique_ptr<Store> store_ = open(folder_);
    Presence presence_ = Presence::present;
    ReminderScheduler scheduler_{settings_, *store_, loop_, calendar_, [this] { return presence_; },
                                 3s};
    OneScreen screens_;
    Silence sounds_;
    NotchAlertController controller_{settings_,  *store_,  loop_,  calendar_,
                                     scheduler_, screens_, sounds_};
    ReferenceModel model_{calendar_, loop_.now(), loop_.monotonicNow()};
    std::set<std::pair<Instant, ReminderId>> handedOver_;
    std::optional<MonotonicInstant> answerAt_;
    int plannedFor_ = 0;
};

TEST_P(LifelikeYear, GoesByTheRules) {
    // The first is the whole year, the others are shorter stretches with other luck.
    const bool isWholeYear = GetParam() == 1;
    const MonotonicInstant end = loop_.monotonicNow() + (isWholeYear ? 365 : 60) * 24h;
    MonotonicInstant nextRows = loop_.monotonicNow() + 30 * 24h;
    while (loop_.monotonicNow() < end && !HasFatalFailure()) {
        liveUntil(loop_.monotonicNow() +
                  (model_.shown && chance(0.6) ? span(1, 40) : span(60, 6 * 3600)));
        if (HasFatalFailure()) return;
        somethingHappens();
        loop_.runPending();
        compare();
        if (loop_.monotonicNow() < nextRows) continue;
        nextRows += 30 * 24h;
        compareRows();
    }
    compareRows();
    if (!isWholeYear) return;
    EXPECT_EQ(model_.tally.size(), 16u);
    for (const auto& [what, count] : model_.tally) {
        EXPECT_GE(count, 5) << what << " hardly ever came about";
        RecordProperty("tally " + what, count);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, LifelikeYear, ::testing::Range(1u, 5u));

}  // namespace
}  // namespace tendel

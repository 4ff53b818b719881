#include <gtest/gtest.h>
#include <unistd.h>

#include <algorithm>
#include <deque>
#include <filesystem>
#include <map>
#include <random>
#include <tuple>

#include "alerts/NotchAlertController.h"
#include "base/SimulatedEventLoop.h"
#include "reminders/ReminderScheduler.h"

// A year of a person's life with forty reminders, played against a model of the rules that is
// written plainly and knows nothing of the scheduler's or the controller's code. The model is asked
// at every step what had to happen.

namespace tendel {
namespace {

using namespace std::chrono_literals;

constexpr Duration latenessAllowed = 60s;
constexpr Duration correctionAllowed = 5min;
constexpr Duration releaseDelay = 3s;
constexpr Duration autoHide = 30s;
// The check mark and the growing may come before the countdown; its ticks are a quarter of a
// second.
constexpr Duration autoHideSlack = 2s;

using Row =
    std::tuple<Instant, std::int64_t, std::string, std::string>;  // due, reminder, outcome, title

// What the rules say must happen. Time is moved by the year that is played.
class RuleModel {
public:
    struct Alert {
        ReminderId id;
        Instant due;
    };
    struct Kept {
        ReminderId id;
        Instant missedAt;
        KeptReason reason;
    };

    RuleModel(const Store& store, const Calendar& calendar, Instant now)
        : store_(store), calendar_(calendar), reference_(now) {}

    // Time has passed to `now` without a jump: fires, keeps, counts and releases what was due on
    // the way.
    void passTo(Instant now) {
        while (const auto next = nextMoment()) {
            if (*next > now) break;
            if (releaseAt_ && *next == *releaseAt_)
                release(*next);
            else if (pausedUntil_ && *next == *pausedUntil_)
                endPause(*next);
            else
                fireAll(*next, *next);
        }
        reference_ = std::max(reference_, now);
    }
    // The clock is at `now` after a jump forwards or a sleep.
    void jumpTo(Instant now) {
        if (pausedUntil_ && *pausedUntil_ <= now)
            endPause(*pausedUntil_ < reference_ ? reference_ : *pausedUntil_);
        while (const auto due = nextDue()) {
            if (*due > now) break;
            if (now - *due > latenessAllowed) {
                lastFired_ = *due;
                break;
            }
            fireAll(*due, now);
        }
        reference_ = std::max(reference_, now);
    }
    void setBackTo(Instant now) {
        if (lastFired_ && *lastFired_ - now > correctionAllowed) lastFired_.reset();
        reference_ = lastFired_ ? std::max(now, *lastFired_) : now;
        next_.clear();
    }
    void remindersChanged() { next_.clear(); }

    void become(Presence presence, Instant now) {
        presence_ = presence;
        releaseAt_.reset();
        if (presence == Presence::present) {
            if (!isHolding && !kept.empty()) releaseAt_ = now + releaseDelay;
            return;
        }
        // A running break stays; everything else goes back.
        std::deque<Alert> handedBack;
        if (!isBreakRunning && current) {
            handedBack.push_back(*current);
            current.reset();
        }
        handedBack.insert(handedBack.end(), waiting.begin(), waiting.end());
        waiting.clear();
        for (const Alert& alert : handedBack)
            cannotShow(alert.id, alert.due, now);
    }
    void hold(bool holds, Instant now) {
        isHolding = holds;
        if (!holds && presence_ == Presence::present) release(now);
    }
    void pause(Instant until) {
        pausedUntil_ = until;
        std::erase_if(snoozes, [&](const auto& snooze) { return snooze.second <= until; });
        kept.clear();
        releaseAt_.reset();
        current.reset();
        waiting.clear();
        isBreakRunning = false;
    }
    void resume(Instant now) {
        if (pausedUntil_) endPause(now);
    }
    bool isPaused() const { return pausedUntil_.has_value(); }

    // The alert on the screen has ended in this way.
    void answered(Outcome outcome, Instant now, Duration snooze) {
        ASSERT_TRUE(current);
        record(*current, outcome);
        if (outcome == Outcome::snoozed) snoozes[current->id] = now + snooze;
        next_.erase(current->id);
        takeNext();
    }
    void skippedAll() {
        ASSERT_TRUE(current);
        record(*current, Outcome::skipped);
        for (const Alert& alert : waiting)
            record(alert, Outcome::skipped);
        waiting.clear();
        takeNext();
    }
    void deleted(ReminderId id) {
        std::erase_if(waiting, [id](const Alert& alert) { return alert.id == id; });
        if (current && current->id == id) takeNext();
        switchedOff(id);
    }
    void switchedOff(ReminderId id) {
        snoozes.erase(id);
        next_.clear();
    }

    // What must have been handed over to be shown and was not compared yet: title and how late.
    std::deque<std::vector<Kept>> expectedBatches;
    std::vector<Row> rows;
    std::vector<Kept> kept;
    std::map<ReminderId, Instant> snoozes;
    std::optional<Alert> current;
    std::deque<Alert> waiting;
    bool isBreakRunning = false;
    bool isHolding = false;
    WorkingHours hours;
    int fired = 0, shown = 0, counted = 0;

private:
    // By the rules as a person would say them: from the start, every so many minutes, until the day
    // is over; only inside, or only outside, the working hours; looked for over eight days.
    std::optional<Instant> nextOfChain(const Reminder& reminder, Instant after) const {
        const Duration step = std::chrono::minutes(std::max(reminder.intervalMinutes, 1));
        for (DayInterval day = calendar_.day(after); day.start < after + 8 * 24h;
             day = calendar_.dayAfter(day)) {
            for (Instant t = calendar_.time(day, reminder.startHour, reminder.startMinute);
                 t < day.end; t += step) {
                if (t <= after) continue;
                const bool isWorkTime =
                    hours.workdays.contains(day.weekday) &&
                    calendar_.time(day, hours.start.hour, hours.start.minute) <= t &&
                    t < calendar_.time(day, hours.end.hour, hours.end.minute);
                if (isWorkTime == (reminder.kind() == ReminderKind::work)) return t;
            }
        }
        return std::nullopt;
    }
    std::optional<Instant> nextOf(const Reminder& reminder) {
        const Instant after = pausedUntil_ ? std::max(reference_, *pausedUntil_) : reference_;
        if (const auto snooze = snoozes.find(reminder.id); snooze != snoozes.end()) {
            if (snooze->second > after) return snooze->second;
            snoozes.erase(snooze);
        }
        const auto known = next_.find(reminder.id);
        if (known != next_.end() && known->second > after) return known->second;
        const auto found = nextOfChain(reminder, after);
        if (found) next_[reminder.id] = *found;
        return found;
    }
    std::optional<Instant> nextDue() {
        std::optional<Instant> earliest;
        for (const Reminder& reminder : store_.reminders()) {
            if (!reminder.isOn) continue;
            const auto next = nextOf(reminder);
            if (next && (!earliest || *next < *earliest)) earliest = next;
        }
        return earliest;
    }
    std::optional<Instant> nextMoment() {
        auto next = nextDue();
        for (const auto& other : {releaseAt_, pausedUntil_})
            if (other && (!next || *other < *next)) next = other;
        return next;
    }

    void fireAll(Instant due, Instant now) {
        std::vector<ReminderId> ids;
        for (const Reminder& reminder : store_.reminders())
            if (reminder.isOn && nextOf(reminder) == due) ids.push_back(reminder.id);
        reference_ = due;
        lastFired_ = due;
        fired += static_cast<int>(ids.size());
        if (presence_ == Presence::present && !isHolding) {
            std::vector<Kept> batch;
            for (const ReminderId id : ids)
                batch.push_back({id, due, {}});
            show(batch);
        } else {
            for (const ReminderId id : ids)
                cannotShow(id, due, now);
        }
    }
    void cannotShow(ReminderId id, Instant due, Instant) {
        const Reminder* reminder = store_.find(id);
        if (!reminder) return;
        if (presence_ == Presence::away && reminder->skipsWhenAway()) {
            record({id, due}, Outcome::breakTaken);
            ++counted;
            return;
        }
        const KeptReason reason = presence_ == Presence::away       ? KeptReason::away
                                  : presence_ == Presence::busyCall ? KeptReason::call
                                  : presence_ == Presence::busyPresentation
                                      ? KeptReason::presentation
                                      : KeptReason::focus;
        for (Kept& known : kept)
            if (known.id == id) {
                known.reason = std::max(known.reason, reason);
                return;
            }
        kept.push_back({id, due, reason});
    }
    void release(Instant) {
        releaseAt_.reset();
        std::vector<Kept> batch;
        for (const Kept& item : kept)
            if (const Reminder* reminder = store_.find(item.id); reminder && reminder->isOn)
                batch.push_back(item);
        kept.clear();
        if (!batch.empty()) show(batch);
    }
    void endPause(Instant at) {
        pausedUntil_.reset();
        reference_ = std::max(reference_, at);
        next_.clear();
    }
    void show(const std::vector<Kept>& batch) {
        expectedBatches.push_back(batch);
        shown += static_cast<int>(batch.size());
        for (const Kept& item : batch) {
            const auto older = std::ranges::find_if(
                waiting, [&](const Alert& alert) { return alert.id == item.id; });
            if (current && current->id == item.id) {
                record({item.id, item.missedAt}, Outcome::expired);
                continue;
            }
            if (older != waiting.end()) {
                record(*older, Outcome::expired);
                waiting.erase(older);
            }
            waiting.push_back({item.id, item.missedAt});
        }
        if (!current) takeNext();
    }
    void takeNext() {
        isBreakRunning = false;
        current.reset();
        if (waiting.empty()) return;
        current = waiting.front();
        waiting.pop_front();
    }
    void record(const Alert& alert, Outcome outcome) {
        const Reminder* reminder = store_.find(alert.id);
        if (reminder)
            rows.emplace_back(alert.due, alert.id.value, std::string(rawValue(outcome)),
                              reminder->displayTitle());
    }

    const Store& store_;
    const Calendar& calendar_;
    Instant reference_;  // everything up to here has been dealt with
    std::optional<Instant> lastFired_;
    std::optional<Instant> pausedUntil_;
    std::optional<Instant> releaseAt_;
    Presence presence_ = Presence::present;
    std::map<ReminderId, Instant> next_;
};

class OneScreen : public Screens {
public:
    std::vector<ScreenInfo> all() const override {
        ScreenInfo screen;
        screen.frame = {0, 0, 1280, 800};
        return {screen};
    }
    std::optional<std::pair<double, double>> pointer() const override {
        return std::pair(10.0, 10.0);
    }
};

class NoSounds : public SystemSounds {
public:
    void play(std::string_view) override {}
};

class SimulatedYear : public ::testing::TestWithParam<int>, protected ReminderAlertPresenting {
protected:
    void SetUp() override {
        random_.seed(static_cast<unsigned>(GetParam()));
        const std::filesystem::path memory = "/dev/shm";
        folder_ =
            (std::filesystem::exists(memory) ? memory : std::filesystem::temp_directory_path()) /
            ("tendel-year-" + std::to_string(::getpid()));
        auto opened = Store::open(folder_ / "Tendel.store");
        ASSERT_TRUE(opened) << opened.error();
        store_ = std::move(opened.value());
        ASSERT_TRUE(store_->save([&](Store::Writer& writer) {
            for (int i = 0; i < 40; ++i)
                writer.insert(randomReminder());
        }));
        settings_.snoozeMinutes.set(5);
        scheduler_.emplace(
            settings_, *store_, loop_, calendar_, [this] { return presence_; }, releaseDelay);
        alerts_.emplace(settings_, *store_, loop_, calendar_, *scheduler_, screens_, sounds_);
        alerts_->model().reduceMotion = true;
        scheduler_->presenter = this;
        model_.emplace(*store_, calendar_, loop_.now());
        watch_ = alerts_->model().changed.connect([this](auto) { lookAtAlert(); });
        scheduler_->start();
    }
    void TearDown() override {
        watch_.reset();
        alerts_.reset();
        scheduler_.reset();
        store_.reset();
        std::filesystem::remove_all(folder_);
    }

    // The scheduler hands over: it must be just what the model expects at this moment.
    void present(const Upcoming& upcoming) override {
        model_->passTo(loop_.now());
        ASSERT_FALSE(model_->expectedBatches.empty())
            << "unexpected: " << upcoming.title() << " at " << formatIso8601(loop_.now());
        const auto expected = model_->expectedBatches.front();
        model_->expectedBatches.pop_front();
        ASSERT_EQ(upcoming.items.size(), expected.size()) << formatIso8601(loop_.now());
        for (std::size_t i = 0; i < expected.size(); ++i) {
            const auto& item = upcoming.items[i];
            EXPECT_EQ(item.id.value, expected[i].id.value) << formatIso8601(loop_.now());
            EXPECT_EQ(item.missedAt.value_or(upcoming.fireDate), expected[i].missedAt);
            if (item.keptReason) {
                EXPECT_EQ(*item.keptReason, expected[i].reason);
            } else {
                EXPECT_TRUE(timesFired_.insert({upcoming.fireDate, item.id.value}).second)
                    << "fired twice: " << item.title << " at " << formatIso8601(upcoming.fireDate);
            }
        }
        alerts_->present(upcoming);
        lookAtAlert();
    }
    void dismissAll() override { alerts_->dismissAll(); }

    // Another alert is on the screen, or none: the person decides what to do about it.
    void lookAtAlert() {
        const auto& current = alerts_->queue().current;
        const std::optional<AlertId> id = current ? std::optional(current->id) : std::nullopt;
        if (id == seen_) return;
        if (seen_ && !isAnswering_) endedByItself();
        seen_ = id;
        shownAt_ = loop_.now();
        breakEnds_.reset();
        answer_.stop();
        if (!id) return;
        // Two that are left alone in a row would end on the very minute of the next firing.
        const bool leavesAlone = !leftAlone_ && chance(0.25);
        leftAlone_ = leavesAlone;
        if (!leavesAlone) answer_.start(between(1.0, 25.0), [this] { answer(); });
    }
    void endedByItself() {
        if (isTakingAway_) return;
        if (!model_->current) {
            ADD_FAILURE() << "the model has no alert that could end at "
                          << formatIso8601(loop_.now());
            return;
        }
        const bool wasBreak = breakEnds_.has_value();
        const Duration away =
            wasBreak ? loop_.now() - *breakEnds_ : loop_.now() - shownAt_ - autoHide;
        EXPECT_GE(away, -250ms) << "ended too early";
        EXPECT_LE(away, autoHideSlack) << "ended too late";
        model_->answered(wasBreak ? Outcome::done : Outcome::expired, loop_.now(), {});
    }
    void answer() {
        model_->passTo(loop_.now());
        ASSERT_TRUE(model_->current && alerts_->queue().current);
        ASSERT_EQ(*alerts_->queue().current->reminderId(), model_->current->id);
        const auto& actions = alerts_->actions();
        const bool offersBreak = alerts_->queue().current->durationSeconds.has_value();
        const int choice = std::uniform_int_distribution(0, offersBreak ? 7 : 5)(random_);
        if (choice >= 6) {
            breakEnds_ =
                loop_.now() + std::chrono::seconds(*alerts_->queue().current->durationSeconds);
            model_->isBreakRunning = true;
            actions.start();
            return;
        }
        // The system saves and shows the next one inside the call; the model hears of the answer
        // first.
        isAnswering_ = true;
        switch (choice) {
            case 0:
                answerWith(Outcome::snoozed, actions.snooze);
                break;
            case 1:
                answerWith(Outcome::skipped, actions.skip);
                break;
            case 2:
                answerWith(Outcome::breakTaken, actions.hadBreak);
                break;
            case 3:
                model_->skippedAll();
                actions.skipAll();
                break;
            default:
                answerWith(Outcome::done, actions.done);
                break;
        }
        lookAtAlert();
        isAnswering_ = false;
    }
    void answerWith(Outcome outcome, const std::function<void()>& action) {
        model_->answered(outcome, loop_.now(), std::chrono::minutes(*settings_.snoozeMinutes));
        action();
    }

    void live(Duration span) {
        loop_.advance(span);
        model_->passTo(loop_.now());
        EXPECT_TRUE(model_->expectedBatches.empty())
            << "not shown: reminder " << model_->expectedBatches.front().front().id.value << " due "
            << formatIso8601(model_->expectedBatches.front().front().missedAt) << ", now "
            << formatIso8601(loop_.now());
        model_->expectedBatches.clear();
    }
    void liveUntilNothingIsShown() {
        for (int i = 0; i < 100 && (alerts_->queue().current || model_->current); ++i)
            live(45s + between(0, 1));
    }
    void become(Presence presence) {
        presence_ = presence;
        isTakingAway_ = true;
        model_->become(presence, loop_.now());
        scheduler_->presenceDidChange(presence);
        if (presence == Presence::away) alerts_->userWentAway();
        if (isBusy(presence)) alerts_->userGotBusy(presence);
        lookAtAlert();
        isTakingAway_ = false;
    }

    void doSomething() {
        switch (std::uniform_int_distribution(0, 15)(random_)) {
            case 0:
            case 1:
            case 2:
            case 3:
            case 4:
                return cannotBeDisturbedForAWhile();
            case 5:
                return focusForAWhile();
            case 6:
                return pauseForAWhile();
            case 7:
                return sleepForAWhile();
            case 8:
                return stepClock();
            case 9:
                return changeZone();
            case 10:
                return changeHours();
            default:
                return editReminders();
        }
    }
    void cannotBeDisturbedForAWhile() {
        constexpr Presence states[] = {Presence::away, Presence::away, Presence::busyCall,
                                       Presence::busyPresentation};
        do {
            become(states[std::uniform_int_distribution(0, 3)(random_)]);
            live(between(60, 3600));
            if (chance(0.1)) pauseForAWhile();
            if (chance(0.1)) editReminders();
        } while (chance(0.4));
        become(Presence::present);
        // Gone again before what was kept is shown.
        if (chance(0.2)) {
            live(between(0.1, 2.9));
            become(Presence::away);
            live(between(60, 600));
            become(Presence::present);
        }
    }
    void focusForAWhile() {
        model_->hold(true, loop_.now());
        scheduler_->setHoldingReminders(true);
        live(between(600, 3000));
        if (chance(0.3)) cannotBeDisturbedForAWhile();
        if (chance(0.2)) pauseForAWhile();
        model_->hold(false, loop_.now());
        scheduler_->setHoldingReminders(false);
    }
    void pauseForAWhile() {
        const Instant until = loop_.now() + between(300, 7200);
        isTakingAway_ = true;
        model_->pause(until);
        scheduler_->pause(until);
        lookAtAlert();
        isTakingAway_ = false;
        live(between(60, 3600));
        if (!chance(0.5) || !model_->isPaused()) return;
        model_->resume(loop_.now());
        scheduler_->resume();
    }
    void sleepForAWhile() {
        liveUntilNothingIsShown();
        const Duration span = chance(0.3) ? between(1, 90) : between(600, 8 * 3600);
        jumping([&] { loop_.sleep(span); }, loop_.now() + span);
    }
    void stepClock() {
        liveUntilNothingIsShown();
        const Duration span = chance(0.5) ? between(0.1, 280) : between(400, 3 * 3600);
        if (chance(0.5))
            return jumping([&] { loop_.setWallClock(loop_.now() + span); }, loop_.now() + span);
        // Far back, the same instants come again.
        if (span > correctionAllowed)
            timesFired_.erase(timesFired_.lower_bound({loop_.now() - span, 0}), timesFired_.end());
        model_->setBackTo(loop_.now() - span);
        loop_.setWallClock(loop_.now() - span);
    }
    void jumping(const std::function<void()>& jump, Instant to) {
        // What is found late is handed over inside the jump; the model must be there first.
        model_->jumpTo(to);
        jump();
        live(Duration::zero());
    }
    void changeZone() {
        liveUntilNothingIsShown();
        constexpr const char* zones[] = {"Europe/Berlin", "America/New_York", "Australia/Lord_Howe",
                                         "Africa/Cairo"};
        calendar_.setZone(zones[std::uniform_int_distribution(0, 3)(random_)]);
        model_->remindersChanged();
        loop_.changeTimeZone();
    }
    void changeHours() {
        const int start = std::uniform_int_distribution(7, 11)(random_);
        model_->hours = {.start = {start, 30}, .end = {start + 8, 0}};
        model_->remindersChanged();
        settings_.workingHours.set(model_->hours);
    }
    void editReminders() {
        const auto& all = store_->reminders();
        Reminder chosen =
            all[std::uniform_int_distribution<std::size_t>(0, all.size() - 1)(random_)];
        const bool isQueued = (model_->current && model_->current->id == chosen.id) ||
                              std::ranges::any_of(model_->waiting, [&](auto& alert) {
                                  return alert.id == chosen.id;
                              });
        const int choice = std::uniform_int_distribution(0, 3)(random_);
        isTakingAway_ = true;
        if (choice == 0) {
            chosen.title += "!";
            save([&](Store::Writer& writer) { writer.update(chosen); });
        } else if (choice == 1 && !isQueued) {
            chosen.isOn = !chosen.isOn;
            save([&](Store::Writer& writer) { writer.update(chosen); });
            if (!chosen.isOn) model_->switchedOff(chosen.id);
        } else if (choice == 2) {
            // The model takes it down first: the save withdraws it from the screen.
            model_->deleted(chosen.id);
            save([&](Store::Writer& writer) {
                writer.remove(chosen.id);
                writer.insert(randomReminder());
            });
        } else if (!isQueued) {
            const ReminderId id = chosen.id;
            chosen = randomReminder();
            chosen.id = id;
            save([&](Store::Writer& writer) { writer.update(chosen); });
        }
        model_->remindersChanged();
        lookAtAlert();
        isTakingAway_ = false;
    }
    void save(const std::function<void(Store::Writer&)>& changes) {
        ASSERT_TRUE(store_->save(changes));
    }

    Reminder randomReminder() {
        const auto number = [&](int from, int to) {
            return std::uniform_int_distribution(from, to)(random_);
        };
        Reminder made;
        made.title = "Reminder " + std::to_string(++made_);
        made.setKind(chance(0.7) ? ReminderKind::work : ReminderKind::private_);
        made.setStart({number(0, 18), number(0, 59)});
        made.intervalMinutes = number(60, 300);
        if (chance(0.1)) {
            // One that comes again before it is answered.
            made.setKind(ReminderKind::private_);
            made.setStart({23, number(0, 50)});
            made.intervalMinutes = number(1, 2);
        }
        if (chance(0.3)) made.durationSeconds = number(15, 180);
        if (chance(0.2)) made.skipsWhenAwayChoice = chance(0.5);
        return made;
    }
    bool chance(double probability) { return std::bernoulli_distribution(probability)(random_); }
    Duration between(double from, double to) {
        return seconds(std::uniform_real_distribution(from, to)(random_)) + Duration(1);
    }

    std::mt19937_64 random_;
    int made_ = 0;
    std::filesystem::path folder_;
    Calendar calendar_{"Europe/Berlin", "en_GB"};
    SimulatedEventLoop loop_{*parseIso8601("2026-01-01T07:13:20Z")};
    Defaults defaults_;
    AppSettings settings_{defaults_};
    OneScreen screens_;
    NoSounds sounds_;
    std::unique_ptr<Store> store_;
    Presence presence_ = Presence::present;
    std::optional<ReminderScheduler> scheduler_;
    std::optional<NotchAlertController> alerts_;
    std::optional<RuleModel> model_;

    std::set<std::pair<Instant, std::int64_t>> timesFired_;
    std::optional<AlertId> seen_;
    Instant shownAt_;
    std::optional<Instant> breakEnds_;
    bool leftAlone_ = false;
    bool isAnswering_ = false;
    bool isTakingAway_ = false;
    Timer answer_{loop_};
    Subscription watch_;
};

TEST_P(SimulatedYear, HappensAsTheRulesSay) {
    // The first is the whole year, the others are shorter lives with other luck.
    const Instant end = loop_.now() + std::chrono::days(GetParam() == 1 ? 365 : 30);
    while (loop_.now() < end && !HasFailure()) {
        live(between(30, 7200));
        doSomething();
    }
    liveUntilNothingIsShown();

    std::vector<Row> stored;
    for (const ReminderEvent& event : store_->events())
        stored.emplace_back(event.fireDate, event.reminder ? event.reminder->value : 0,
                            event.outcomeRaw, event.reminderTitle);
    // A reminder that is gone has left its rows; the model still knows whose they were.
    for (Row& row : model_->rows)
        if (!store_->find(ReminderId{std::get<1>(row)})) std::get<1>(row) = 0;
    std::ranges::sort(stored);
    std::ranges::sort(model_->rows);
    EXPECT_EQ(stored, model_->rows);
    EXPECT_GT(model_->shown, 500);
    EXPECT_GT(model_->counted, 20);
    RecordProperty("fired", model_->fired);
    RecordProperty("shown", model_->shown);
    RecordProperty("rows", static_cast<int>(stored.size()));
}

INSTANTIATE_TEST_SUITE_P(Lives, SimulatedYear, ::testing::Range(1, 7));

}  // namespace
}  // namespace tendel

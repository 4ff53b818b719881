#include "reminders/ReminderScheduler.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

#include "base/SimulatedEventLoop.h"
#include "reminders/ReminderEventBackfill.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// A Monday in Berlin.
const Instant monday = *parseIso8601("2026-03-02T00:00:00+01:00");

Instant clock(int hour, int minute = 0, int second = 0) {
    return monday + std::chrono::hours(hour) + std::chrono::minutes(minute) +
           std::chrono::seconds(second);
}

class ReminderSchedulerTest : public ::testing::Test, protected ReminderAlertPresenting {
protected:
    void SetUp() override {
        folder_ =
            std::filesystem::temp_directory_path() /
            ("tendel-scheduler-" + std::to_string(::getpid()) + "-" + std::to_string(++folders_));
        auto opened = Store::open(folder_ / "Tendel.store");
        ASSERT_TRUE(opened) << opened.error();
        store_ = std::move(opened.value());
        scheduler_.emplace(
            settings_, *store_, loop_, calendar_, [this] { return presence_; }, 3s);
        scheduler_->presenter = this;
    }
    void TearDown() override {
        scheduler_.reset();
        store_.reset();
        std::filesystem::remove_all(folder_);
    }

    // What the presenter was told: "10:00 Stretch + Water", and "dismissed".
    void present(const Upcoming& upcoming) override {
        shown_ << time(loop_.now()) << " " << upcoming.title();
        for (const auto& item : upcoming.items)
            if (item.missedAt)
                shown_ << " [" << time(*item.missedAt) << " kept " << int(item.keptReason.value())
                       << "]";
        shown_ << "\n";
    }
    void dismissAll() override { shown_ << "dismissed\n"; }

    std::string time(Instant t) { return calendar_.formatTime(t); }
    std::string takeShown() { return std::exchange(shown_, std::ostringstream{}).str(); }

    ReminderId add(std::string title, TimeOfDay start, int interval,
                   std::optional<int> duration = {}) {
        Reminder made;
        made.title = std::move(title);
        made.setStart(start);
        made.intervalMinutes = interval;
        made.durationSeconds = duration;
        ReminderId id;
        EXPECT_TRUE(store_->save([&](Store::Writer& writer) { id = writer.insert(made); }));
        return id;
    }
    void edit(ReminderId id, const std::function<void(Reminder&)>& change) {
        Reminder changed = *store_->find(id);
        change(changed);
        EXPECT_TRUE(store_->save([&](Store::Writer& writer) { writer.update(changed); }));
    }
    void become(Presence presence) {
        presence_ = presence;
        scheduler_->presenceDidChange(presence);
    }

    static inline int folders_ = 0;
    std::filesystem::path folder_;
    Calendar calendar_{"Europe/Berlin", "en_GB"};
    SimulatedEventLoop loop_{clock(8)};
    Defaults defaults_;
    AppSettings settings_{defaults_};
    std::unique_ptr<Store> store_;
    Presence presence_ = Presence::present;
    std::optional<ReminderScheduler> scheduler_;
    std::ostringstream shown_;
};

TEST_F(ReminderSchedulerTest, HandsOverTogetherWhatIsDueTogether) {
    add("Stretch", {9, 0}, 60);
    add("Water", {9, 30}, 30);
    scheduler_->start();
    EXPECT_EQ((*scheduler_->upcoming())->title(), "Stretch");
    loop_.advanceTo(clock(10, 1));
    EXPECT_EQ(takeShown(), "09:00 Stretch\n09:30 Water\n10:00 Stretch · Water\n");
}

TEST_F(ReminderSchedulerTest, FollowsEveryChangeOfRemindersHoursClockAndZone) {
    const auto id = add("Stretch", {9, 0}, 60);
    scheduler_->start();
    const auto next = [&] {
        return *scheduler_->upcoming() ? time((*scheduler_->upcoming())->fireDate) : "none";
    };
    EXPECT_EQ(next(), "09:00");
    edit(id, [](Reminder& r) { r.startMinute = 20; });
    EXPECT_EQ(next(), "09:20");
    settings_.workingHours.set({.start = {11, 0}});
    EXPECT_EQ(next(), "11:20");
    loop_.setWallClock(clock(12));
    EXPECT_EQ(next(), "12:20");
    calendar_.setZone("America/New_York");
    loop_.changeTimeZone();
    EXPECT_EQ(next(), "11:20");
    edit(id, [](Reminder& r) { r.isOn = false; });
    EXPECT_EQ(next(), "none");
    EXPECT_LE(loop_.nextDue().value() - loop_.monotonicNow(), 60s)
        << "only the minute clock goes on";
}

TEST_F(ReminderSchedulerTest, DropsAFiringFoundMoreThanSixtySecondsLate) {
    add("Stretch", {9, 0}, 60);
    scheduler_->start();
    loop_.advanceTo(clock(9, 55));
    takeShown();
    loop_.sleep(95min);
    EXPECT_EQ(takeShown(), "");
    loop_.advanceTo(clock(11, 59));
    loop_.sleep(2min);
    EXPECT_EQ(takeShown(), "12:01 Stretch\n") << "exactly 60 s late is still shown";
    EXPECT_TRUE(store_->events().empty());
}

TEST_F(ReminderSchedulerTest, LosesNothingThatFellDueInTheMomentOfAnotherLook) {
    const auto id = add("Stretch", {9, 0}, 60);
    add("Water", {9, 0}, 30);
    scheduler_->start();
    loop_.advanceTo(clock(9));
    takeShown();
    // A step of the clock makes it look at 9:30:50: the chain's 9:30 and the snooze of 9:30:20 are
    // both still due.
    loop_.advance(5s);
    scheduler_->snooze(id, 30min + 15s);
    loop_.advanceTo(clock(9, 29));
    loop_.setWallClock(clock(9, 30, 50));
    loop_.runPending();
    EXPECT_EQ(takeShown(), "09:30 Water\n09:30 Stretch\n");
}

TEST_F(ReminderSchedulerTest, FiresNoInstantTwiceWhenTheClockIsCorrectedButGoesOnAfterAGreatStep) {
    add("Stretch", {9, 0}, 60);
    scheduler_->start();
    loop_.advanceTo(clock(9, 0, 1));
    loop_.setWallClock(clock(8, 59, 30));
    loop_.advanceTo(clock(9, 30));
    EXPECT_EQ(takeShown(), "09:00 Stretch\n");
    loop_.advanceTo(clock(12, 30));
    takeShown();
    loop_.setWallClock(clock(9, 30));
    loop_.advanceTo(clock(12, 1));
    EXPECT_EQ(takeShown(), "10:00 Stretch\n11:00 Stretch\n12:00 Stretch\n");
}

TEST_F(ReminderSchedulerTest, PauseDropsWhatFallsIntoItAndEndsByItself) {
    add("Stretch", {9, 0}, 30);
    scheduler_->start();
    int pauseChanges = 0;
    scheduler_->onPauseChange = [&] { ++pauseChanges; };
    loop_.advanceTo(clock(9, 40));
    presence_ = Presence::busyCall;
    loop_.advanceTo(clock(10, 0, 30));
    EXPECT_EQ(scheduler_->kept().size(), 1u);
    takeShown();
    scheduler_->pause(clock(10, 30));
    EXPECT_EQ(takeShown(), "dismissed\n");
    EXPECT_TRUE(scheduler_->kept().empty());
    become(Presence::present);
    loop_.advanceTo(clock(10, 59));
    EXPECT_EQ(takeShown(), "") << "10:30 is the pause's end and not after it";
    EXPECT_EQ(*scheduler_->pausedUntil(), std::nullopt);
    EXPECT_EQ(pauseChanges, 2);
    scheduler_->pause(clock(15));
    scheduler_->resume();
    takeShown();
    loop_.advanceTo(clock(11, 1));
    EXPECT_EQ(takeShown(), "11:00 Stretch\n");
}

TEST_F(ReminderSchedulerTest, SnoozeComesBackOnceInPlaceOfTheChain) {
    const auto id = add("Stretch", {9, 0}, 45);
    scheduler_->start();
    loop_.advanceTo(clock(9));
    takeShown();
    scheduler_->snooze(id, 10min);
    loop_.advanceTo(clock(9, 44));
    EXPECT_EQ(takeShown(), "09:10 Stretch\n");
    scheduler_->snooze(id, 10min);
    loop_.advanceTo(clock(10));
    EXPECT_EQ(takeShown(), "09:54 Stretch\n");
    scheduler_->snooze(id, 10min);
    edit(id, [](Reminder& r) { r.isOn = false; });
    edit(id, [](Reminder& r) { r.isOn = true; });
    loop_.advanceTo(clock(10, 20));
    EXPECT_EQ(takeShown(), "") << "switching it off dropped the snooze";
}

TEST_F(ReminderSchedulerTest, KeepsEachReminderOnceDuringACallAndShowsItAfterTheDelay) {
    add("Stretch", {9, 0}, 15);
    const auto gone = add("Gone", {9, 10}, 600);
    scheduler_->start();
    become(Presence::busyPresentation);
    loop_.advanceTo(clock(9, 20));
    become(Presence::busyCall);
    loop_.advanceTo(clock(9, 50));
    EXPECT_TRUE(store_->save([&](Store::Writer& writer) { writer.remove(gone); }));
    EXPECT_EQ(takeShown(), "");
    become(Presence::present);
    loop_.advance(1s);
    become(Presence::busyCall);
    loop_.advance(10s);
    EXPECT_EQ(takeShown(), "") << "the call went on before the delay had passed";
    become(Presence::present);
    loop_.advance(3s);
    EXPECT_EQ(takeShown(), "09:50 Stretch [09:00 kept 2]\n");
    EXPECT_TRUE(scheduler_->kept().empty());
}

TEST_F(ReminderSchedulerTest, CountsBreaksAndKeepsTheRestWhileAway) {
    const auto look = add("Look away", {9, 0}, 60, 20);
    add("Water", {9, 0}, 60);
    scheduler_->start();
    become(Presence::away);
    loop_.advanceTo(clock(9, 5));
    const auto events = store_->events();
    ASSERT_EQ(events.size(), 1u);
    EXPECT_EQ(events[0].reminder, look);
    EXPECT_EQ(events[0].outcome(), Outcome::breakTaken);
    EXPECT_EQ(events[0].fireDate, clock(9));
    EXPECT_EQ(events[0].reminderTitle, "Look away");
    become(Presence::present);
    loop_.advance(5s);
    EXPECT_EQ(takeShown(), "09:05 Water [09:00 kept 3]\n");
}

TEST_F(ReminderSchedulerTest, FocusHoldsAndReleasesAtOnceButNotIntoACall) {
    add("Stretch", {9, 0}, 60);
    scheduler_->start();
    scheduler_->setHoldingReminders(true);
    loop_.advanceTo(clock(9, 25));
    scheduler_->setHoldingReminders(false);
    EXPECT_EQ(takeShown(), "09:25 Stretch [09:00 kept 0]\n");
    scheduler_->setHoldingReminders(true);
    loop_.advanceTo(clock(10, 25));
    presence_ = Presence::busyCall;
    scheduler_->setHoldingReminders(false);
    EXPECT_EQ(takeShown(), "");
    become(Presence::present);
    scheduler_->setHoldingReminders(true);
    loop_.advance(5s);
    EXPECT_EQ(takeShown(), "") << "the next focus block began within the delay";
    EXPECT_EQ(scheduler_->kept().size(), 1u);
}

TEST_F(ReminderSchedulerTest, RereadsWhatIsDueAndTheMinuteClockKeepsToTheMinute) {
    loop_.advance(20s + 250ms);
    const auto id = add("Stretch", {9, 0}, 60);
    scheduler_->start();
    std::string ticks;
    const auto keep = scheduler_->now().observe(
        [&] { ticks += formatIso8601(*scheduler_->now()).substr(14, 6); });
    loop_.advance(100s);
    EXPECT_EQ(ticks, "01:00Z02:00Z");
    edit(id, [](Reminder& r) { r.title = "Reach"; });
    loop_.advanceTo(clock(9, 1));
    EXPECT_EQ(takeShown(), "09:00 Reach\n");
}

TEST_F(ReminderSchedulerTest, BackfillNamesOnlyWhatStillHasItsReminder) {
    const auto id = add("Stretch", {9, 0}, 60);
    ReminderEvent unnamed(*store_->find(id), clock(9), Outcome::done, clock(9));
    unnamed.reminderTitle.clear();
    ReminderEvent orphan = unnamed;
    orphan.reminder.reset();
    ASSERT_TRUE(store_->record(std::array{unnamed, orphan}));
    edit(id, [](Reminder& r) { r.setKind(ReminderKind::private_); });
    backfillEventTitles(*store_);
    const auto events = store_->events();
    EXPECT_EQ(events[0].reminderTitle, "Stretch");
    EXPECT_EQ(events[0].kindRaw, "private");
    EXPECT_EQ(events[1].reminderTitle, "");
}

}  // namespace
}  // namespace tendel

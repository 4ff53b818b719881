#include "reminders/ReminderScheduler.h"

#include <gtest/gtest.h>

#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// On a Monday in Berlin.
class ReminderSchedulerTest : public ::testing::Test,
                              protected test::ReminderServices,
                              protected ReminderAlertPresenting {
protected:
    ReminderSchedulerTest() : ReminderServices("2026-03-02T08:00:00+01:00") {
        scheduler.presenter = this;
    }

    // What the presenter was told: "10:00 Stretch · Water; ", and "dismissed; ".
    void present(const Upcoming& upcoming) override {
        shown += time(loop.now()) + " " + upcoming.title() + "; ";
    }
    void dismissAll() override { shown += "dismissed; "; }
    std::string takeShown() { return std::exchange(shown, {}); }

    static Instant clock(int hour, int minute = 0, int second = 0) {
        return *parseIso8601("2026-03-02T00:00:00+01:00") + std::chrono::hours(hour) +
               std::chrono::minutes(minute) + std::chrono::seconds(second);
    }
    std::string shownUntil(Instant t) {
        takeShown();
        loop.advanceTo(t);
        return takeShown();
    }
    void become(Presence now) {
        presence = now;
        scheduler.presenceDidChange(now);
    }
    static void switchOff(Reminder& reminder) { reminder.isOn = false; }

    std::string shown;
};

TEST_F(ReminderSchedulerTest, DropsAFiringFoundMoreThanSixtySecondsLate) {
    add("Stretch", {{9, 0}, 60});
    scheduler.start();
    loop.advanceTo(clock(9, 55));
    takeShown();
    loop.sleep(5min + 60s + 1us);
    EXPECT_EQ(takeShown(), "");
    loop.advanceTo(clock(10, 59));
    loop.sleep(2min);
    EXPECT_EQ(takeShown(), "11:01 Stretch; ") << "exactly 60 s late is still shown";
    EXPECT_EQ(takeHistory(), "");
}

TEST_F(ReminderSchedulerTest, LosesNothingThatFellDueInTheMomentOfAnotherLook) {
    const auto id = add("Stretch", {{9, 0}, 60});
    add("Water", {{9, 0}, 30});
    scheduler.start();
    loop.advanceTo(clock(9));
    // A step of the clock makes it look at 9:30:50: the chain's 9:30 and the snooze of 9:30:20 are
    // both still due.
    loop.advance(5s);
    scheduler.snooze(id, 30min + 15s);
    loop.advanceTo(clock(9, 29));
    takeShown();
    loop.setWallClock(clock(9, 30, 50));
    loop.runPending();
    EXPECT_EQ(takeShown(), "09:30 Water; 09:30 Stretch; ");
}

TEST_F(ReminderSchedulerTest, PauseDropsWhatFallsIntoItAndEndsByItself) {
    add("Stretch", {{9, 0}, 30});
    scheduler.start();
    int pauseChanges = 0;
    scheduler.onPauseChange = [&] { ++pauseChanges; };
    loop.advanceTo(clock(9, 40));
    takeShown();
    scheduler.pause(clock(10, 30));
    EXPECT_EQ(takeShown(), "dismissed; ");
    EXPECT_EQ(shownUntil(clock(11, 1)), "11:00 Stretch; ") << "10:30 is the end and not after it";
    EXPECT_EQ(pauseChanges, 2);
}

TEST_F(ReminderSchedulerTest, SnoozeComesBackOnceInPlaceOfTheChain) {
    const auto id = add("Stretch", {{9, 0}, 45});
    scheduler.start();
    loop.advanceTo(clock(9, 44));
    scheduler.snooze(id, 10min);
    EXPECT_EQ(shownUntil(clock(10)), "09:54 Stretch; ");
    scheduler.snooze(id, 10min);
    edit(id, switchOff);
    edit(id, [](Reminder& r) { r.isOn = true; });
    EXPECT_EQ(shownUntil(clock(10, 20)), "") << "switching it off dropped the snooze";
}

TEST_F(ReminderSchedulerTest, FocusHoldsAndReleasesAtOnceButNotIntoACall) {
    add("Stretch", {{9, 0}, 60});
    scheduler.start();
    scheduler.setHoldingReminders(true);
    loop.advanceTo(clock(9, 25));
    scheduler.setHoldingReminders(false);
    EXPECT_EQ(takeShown(), "09:25 Stretch; ");
    scheduler.setHoldingReminders(true);
    loop.advanceTo(clock(10, 25));
    presence = Presence::busyCall;
    scheduler.setHoldingReminders(false);
    EXPECT_EQ(takeShown(), "");
    become(Presence::present);
    scheduler.setHoldingReminders(true);
    loop.advance(5s);
    EXPECT_EQ(takeShown(), "") << "the next focus block began within the delay";
    EXPECT_EQ(kept(), "Stretch 10:00 0");
}

TEST_F(ReminderSchedulerTest, TheMinuteClockKeepsToTheMinute) {
    loop.advance(20s + 250ms);
    scheduler.start();
    std::string ticks;
    const auto keep =
        scheduler.now().observe([&] { ticks += formatIso8601(*scheduler.now()).substr(14, 6); });
    loop.advance(100s);
    EXPECT_EQ(ticks, "01:00Z02:00Z");
    EXPECT_EQ(loop.nextDue(), loop.monotonicNow() + 59s + 750ms) << "and nothing else wakes up";
}

}  // namespace
}  // namespace tendel

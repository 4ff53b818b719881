#include <gtest/gtest.h>

#include "support/WholeApplication.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// With a timed break every half hour from 10:00 and a plain reminder at every full hour.
class PresenceWiring : public ::testing::Test, protected test::WholeApplication {
protected:
    PresenceWiring() {
        save([](Store::Writer& writer) {
            Reminder stretch;
            stretch.title = "Stretch";
            stretch.setStart({10, 0});
            stretch.intervalMinutes = 30;
            stretch.durationSeconds = 60;
            writer.insert(stretch);
            Reminder water;
            water.title = "Water";
            water.setStart({10, 0});
            water.intervalMinutes = 60;
            writer.insert(water);
        });
        app.start();
    }

    // What is shown, and what is kept.
    std::string state() {
        std::string all = shown();
        for (const auto& item : *app.scheduler.kept())
            all += "; kept " + item.title;
        return all;
    }
    std::string history() const {
        std::string all;
        for (const ReminderEvent& event : store->events())
            all += calendar.formatTime(event.fireDate) + " " + event.reminderTitle + " " +
                   event.outcomeRaw + "; ";
        return all;
    }
};

TEST_F(PresenceWiring, ACallTakesTheAlertsAndGivesThemBack) {
    workUntil("10:00:05");
    EXPECT_EQ(state(), "Stretch, Water");
    facts.setMicrophone(true);
    loop.advance(1s);
    EXPECT_EQ(state(), "nothing; kept Stretch; kept Water");
    workUntil("10:40:00");  // one of them falls due once more
    facts.setMicrophone(false);
    loop.advance(2900ms);
    EXPECT_EQ(state(), "nothing; kept Stretch; kept Water");
    loop.advance(1s);
    EXPECT_EQ(state(), "Stretch (Held during your call), Water");
    app.alerts.actions().done();
    loop.advance(5s);
    app.alerts.actions().skip();
    EXPECT_EQ(history(), "10:00 Stretch done; 10:00 Water skipped; ");
}

TEST_F(PresenceWiring, FindsACallThatNobodyToldOfWhileAnAlertIsUp) {
    workUntil("10:00:05");
    facts.microphone.found->push_back({.pid = 7});
    loop.advance(16s);
    EXPECT_EQ(state(), "nothing; kept Stretch; kept Water");

    // Nothing is up any more: no look before the user could be away.
    facts.setMicrophone(false);
    loop.advance(5s);
    app.alerts.actions().skipAll();
    loop.advance(5s);
    facts.asked.clear();
    facts.setIdle(0);
    loop.advance(4min);
    EXPECT_EQ(facts.asked, "");
}

TEST_F(PresenceWiring, AwayCountsBreaksAndKeepsTheRest) {
    workUntil("09:55:00");
    loop.advanceTo(at("11:10:00"));  // nobody touches anything
    EXPECT_EQ(state(), "nothing; kept Water");
    facts.setIdle(0);
    loop.advance(6s);
    EXPECT_EQ(state(), "Water (Missed at 10:00 · you were away)");
    EXPECT_EQ(history(),
              "10:00 Stretch breakTaken; 10:30 Stretch breakTaken; 11:00 Stretch breakTaken; ");
}

TEST_F(PresenceWiring, APresentationHoldsAndALockTakesOverButNeverABreakThatRuns) {
    workUntil("10:00:05");
    app.alerts.actions().start();
    facts.setLocked(true);
    EXPECT_EQ(state(), "Stretch; kept Water");
    loop.advance(2min);
    EXPECT_EQ(state(), "nothing; kept Water");
    EXPECT_EQ(history(), "10:00 Stretch done; ");

    facts.setFilm(true);
    facts.setFullScreen(true);
    facts.setLocked(false);
    workUntil("10:30:05");
    EXPECT_EQ(state(), "nothing; kept Water; kept Stretch");
    facts.setFullScreen(false);  // told once the windows have settled
    loop.advance(5s);
    EXPECT_EQ(state(), "Water (Missed at 10:00 · you were away), Stretch");
    app.alerts.actions().done();
    loop.advance(5s);
    EXPECT_EQ(state(), "Stretch (Held during your presentation)");
}

TEST_F(PresenceWiring, SleepDropsWhatItWentThrough) {
    workUntil("09:55:00");
    facts.system.set(SystemState::screensAsleep, true);
    loop.sleep(95min);
    facts.system.set(SystemState::screensAsleep, false);
    facts.setIdle(0);
    EXPECT_EQ(app.scheduler.upcoming()->value().fireDate, at("12:00:00"));
    loop.advance(10s);
    EXPECT_EQ(state() + history(), "nothing");
    workUntil("12:00:00");
    EXPECT_EQ(state(), "Stretch, Water");
}

}  // namespace
}  // namespace tendel

#include <gtest/gtest.h>

#include "app/AlertHold.h"
#include "support/WholeApplication.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// With two reminders at 10:00, one of them for a break, and a plan of 25 minutes of focus and 5 of
// break; the program has been started again after a crash at 9:10.
class AppWiring : public ::testing::Test, protected test::WholeApplication {
protected:
    AppWiring() {
        app.settings.focusPlan.set({.focusMinutes = 25, .breakMinutes = 5, .longBreakEvery = {}});
        app.settings.focusMix.set({.levels = {}, .on = {FocusSound::brown}});
        save([](Store::Writer& writer) {
            Reminder reminder;
            reminder.title = "Water";
            reminder.setStart({10, 0});
            reminder.intervalMinutes = 120;
            writer.insert(reminder);
            reminder.title = "Stretch";
            reminder.setStart({11, 0});
            reminder.durationSeconds = 60;
            writer.insert(reminder);
            FocusBlock left;
            left.start = at("09:05:00");
            left.plannedMinutes = 10;
            writer.insert(left);
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
    std::string block() const {
        const FocusBlock last = store->focusBlocks().back();
        return calendar.formatTime(last.start) + "-" +
               (last.end ? calendar.formatTime(*last.end) : "") + " " +
               std::to_string(last.focusedSeconds) + (last.finished ? " finished" : "");
    }
    std::string hold() const {
        const auto& current = *hold_.current();
        return current ? current->text(calendar, loop.now()) : "nothing";
    }

    AlertHoldMonitor hold_{app.scheduler, app.presence.state(), app.focus, loop};
};

TEST_F(AppWiring, FindsACallThatNobodyToldOfWhileAnAlertIsUp) {
    workUntil("10:00:05");
    EXPECT_EQ(state(), "Water");
    facts.microphone.found->push_back({.pid = 7});
    loop.advance(16s);
    EXPECT_EQ(state(), "nothing; kept Water");
    facts.setMicrophone(false);
    loop.advance(2900ms);
    EXPECT_EQ(state(), "nothing; kept Water");
    loop.advance(1s);
    EXPECT_EQ(state(), "Water (Held during your call)");

    // Nothing is up any more: no look before the user could be away.
    app.alerts.actions().skip();
    loop.advance(5s);
    facts.asked.clear();
    facts.setIdle(0);
    loop.advance(4min);
    EXPECT_EQ(facts.asked, "");
}

TEST_F(AppWiring, SleepDropsWhatItWentThroughAndAwayKeepsTheRest) {
    workUntil("09:55:00");
    facts.system.set(SystemState::screensAsleep, true);
    loop.sleep(35min);
    EXPECT_EQ(app.scheduler.upcoming()->value().fireDate, at("11:00:00"));
    loop.advanceTo(at("12:10:00"));
    EXPECT_EQ(state(), "nothing; kept Water");
    facts.system.set(SystemState::screensAsleep, false);
    facts.setIdle(0);
    loop.advance(10s);
    EXPECT_EQ(state(), "Water (Missed at 12:00 · you were away)");
    EXPECT_EQ(store->events().size(), 1U);
    EXPECT_EQ(store->events()[0].reminderTitle + store->events()[0].outcomeRaw,
              "StretchbreakTaken");
}

TEST_F(AppWiring, ACallOrALockSilencesTheSoundsAndHoldsTheAnnouncement) {
    app.focus.start();
    EXPECT_TRUE(audio.isOpen);
    workUntil("09:50:00");
    facts.microphone.found->push_back({.pid = 7});  // of which nobody tells
    loop.advance(20s);
    EXPECT_FALSE(app.sounds.isPlaying() || audio.isOpen);
    workUntil("10:03:00");
    EXPECT_EQ(shown() + ", " + hold(), "nothing, In a call · 1 reminder waits");
    facts.setMicrophone(false);
    loop.advance(1s);
    EXPECT_EQ(shown(), "Break's over") << "and nothing of the break that began meanwhile";
    loop.advance(3s);
    EXPECT_EQ(shown(), "Break's over, Water");

    app.alerts.actions().focus(FocusAlertAction::startFocus);
    facts.setLocked(true);
    EXPECT_FALSE(app.sounds.isPlaying());
    loop.advance(26min);
    EXPECT_EQ(block(), "10:03-10:28 1500 finished");
    facts.setLocked(false);
    facts.setIdle(0);
    loop.advance(5s);
    EXPECT_EQ(shown(), "Time for a 5 min break, Water");
    EXPECT_FALSE(app.sounds.isPlaying()) << "no mix for breaks";
}

TEST_F(AppWiring, TheLineTellsTheTimeThatIsLeft) {
    EXPECT_EQ(block() + ", " + hold(), "09:05-09:15 600, nothing");
    workUntil("09:47:30");
    app.focus.start();
    std::vector<std::string> lines;
    const auto watch = hold_.current().observe([&] { lines.push_back(hold()); });
    workUntil("10:12:30");
    ASSERT_EQ(lines.size(), 24U + 1 + 59 + 1)
        << "by the minute, the reminder, by the second, the end";
    EXPECT_EQ(lines.front(), "Focusing · round 1 · 24 min left · then a 5 min break");
    EXPECT_EQ(lines[83], "Focusing · round 1 · 1 s left · then a 5 min break · 1 reminder waits");
    EXPECT_EQ(hold(), "nothing");
    app.focus.extendFocus();
    app.scheduler.pause(at("11:00:00"));
    EXPECT_EQ(hold(), "Paused until 11:00");
    app.scheduler.resume();
    EXPECT_EQ(hold(), "Five more minutes · round 1 · 5 min left · then a 5 min break");
    app.focus.pause();
    EXPECT_EQ(hold(), "nothing");
    loop.advance(1h);
    app.willTerminate();
    EXPECT_EQ(block(), "09:47-11:12 1500 finished");
}

}  // namespace
}  // namespace tendel

#include <gtest/gtest.h>

#include "app/AlertHold.h"
#include "focus/FocusWords.h"
#include "support/WholeApplication.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// With a reminder at 10:00 and a plan of 25 minutes of focus and 5 of break; the program has been
// started again after a crash at 9:10.
class FocusWiring : public ::testing::Test, protected test::WholeApplication {
protected:
    FocusWiring() {
        app.settings.focusPlan.set({.focusMinutes = 25, .breakMinutes = 5, .longBreakEvery = {}});
        app.settings.focusMix.set({.levels = {}, .on = {FocusSound::brown}});
        save([](Store::Writer& writer) {
            Reminder water;
            water.title = "Water";
            water.setStart({10, 0});
            water.intervalMinutes = 1440;
            writer.insert(water);
            FocusBlock left;
            left.start = at("09:05:00");
            left.plannedMinutes = 10;
            writer.insert(left);
        });
        app.start();
    }

    std::string status() const {
        const auto& session = *app.focus.session();
        return session ? statusText(*session, loop.now()) : "no session";
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

TEST_F(FocusWiring, EachAnswerDoesWhatItSays) {
    struct Case {
        std::string_view until, title;
        FocusAlertAction action;
        std::string status, block;
    };
    EXPECT_EQ(block(), "09:05-09:15 600");
    for (const auto& [until, title, action, status, row] :
         {Case{"09:56:00", "Time for a 5 min break", FocusAlertAction::extendFocus,
               "Five more minutes · round 1 · 5 min left · then a 5 min break",
               "09:30- 1500 finished"},
          {"10:02:00", "Time for a 5 min break, Water", FocusAlertAction::skipBreak,
           "Ready for round 2", "09:30-10:01 1800 finished"}}) {
        if (!*app.focus.session()) app.focus.start();
        workUntil(until);
        EXPECT_EQ(shown(), title);
        app.alerts.actions().focus(action);
        EXPECT_EQ(this->status(), status);
        EXPECT_EQ(block(), row);
    }
    loop.advance(1s);
    EXPECT_EQ(shown(), "Water") << "held for the extension";
    app.alerts.actions().skip();
    loop.advance(1s);

    app.focus.extendBreak();
    workUntil("10:08:00");
    EXPECT_EQ(shown(), "Break's over");
    app.alerts.actions().focus(FocusAlertAction::extendBreak);
    EXPECT_EQ(status(), "Break · round 1 · 5 min left · then round 2");
    workUntil("10:14:00");
    EXPECT_EQ(shown(), "Break's over");
    app.alerts.actions().focus(FocusAlertAction::startFocus);
    EXPECT_EQ(status(), "Focusing · round 2 · 25 min left · then a 5 min break");
    EXPECT_EQ(block(), "10:14- 0");
    loop.advance(1s);
    EXPECT_EQ(shown(), "nothing");
    app.willTerminate();
    EXPECT_EQ(block(), "10:14-10:14 1");
}

TEST_F(FocusWiring, ACallSilencesTheSoundsAndHoldsTheAnnouncement) {
    app.focus.start();
    EXPECT_TRUE(audio.isOpen);
    workUntil("09:50:00");
    facts.microphone.found->push_back({.pid = 7});  // of which nobody tells
    loop.advance(20s);
    EXPECT_FALSE(app.sounds.isPlaying());
    EXPECT_FALSE(audio.isOpen);
    workUntil("10:03:00");
    EXPECT_EQ(shown(), "nothing");
    EXPECT_EQ(hold(), "In a call · 1 reminder waits");
    facts.setMicrophone(false);
    loop.advance(1s);
    EXPECT_EQ(shown(), "Break's over") << "and nothing of the break that began meanwhile";
    loop.advance(3s);
    EXPECT_EQ(shown(), "Break's over, Water");
}

TEST_F(FocusWiring, WhoComesBackFindsTheAnnouncementFirst) {
    workUntil("09:32:00");
    app.focus.start();
    facts.setLocked(true);
    EXPECT_FALSE(app.sounds.isPlaying());
    loop.advanceTo(at("10:01:00"));
    EXPECT_EQ(block(), "09:32-09:57 1500 finished");
    facts.setLocked(false);
    facts.setIdle(0);
    loop.advance(5s);
    EXPECT_EQ(shown(), "Time for a 5 min break, Water");
    EXPECT_FALSE(app.sounds.isPlaying()) << "no mix for breaks";
}

TEST_F(FocusWiring, TheLineTellsTheTimeThatIsLeft) {
    EXPECT_EQ(hold(), "nothing");
    workUntil("09:47:30");
    app.focus.start();
    std::vector<std::string> lines;
    const auto watch = hold_.current().observe([&] { lines.push_back(hold()); });
    workUntil("10:00:30");
    EXPECT_EQ(hold(), "Focusing · round 1 · 12 min left · then a 5 min break · 1 reminder waits");
    workUntil("10:12:30");
    ASSERT_GE(lines.size(), 2U);
    EXPECT_EQ(lines.front(), "Focusing · round 1 · 24 min left · then a 5 min break");
    EXPECT_EQ(lines[lines.size() - 2],
              "Focusing · round 1 · 1 s left · then a 5 min break · 1 reminder waits");
    EXPECT_EQ(lines.size(), 24U + 1 + 59 + 1)
        << "by the minute, the reminder, by the second, the end";
    EXPECT_EQ(hold(), "nothing");
    app.focus.extendFocus();
    app.scheduler.pause(at("11:00:00"));
    EXPECT_EQ(hold(), "Paused until 11:00");
    app.scheduler.resume();
    EXPECT_EQ(hold(), "Five more minutes · round 1 · 5 min left · then a 5 min break");
    app.focus.pause();
    EXPECT_EQ(hold(), "nothing");
}

}  // namespace
}  // namespace tendel

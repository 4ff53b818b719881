#include <gtest/gtest.h>

#include "app/AlertHold.h"
#include "app/TendelApp.h"
#include "base/SimulatedEventLoop.h"
#include "focus/FocusWords.h"
#include "support/FakeDesktop.h"
#include "support/FakeFacts.h"
#include "support/TemporaryFolder.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

struct FakeAudio : AudioOutput {
    bool isOpen = false;
    double sampleRate() const override { return 48000; }
    void start(AudioRenderer&) override { isOpen = true; }
    void stop() override { isOpen = false; }
};

// The whole application on a Monday at 9:30 in Berlin, with a reminder at 10:00 and a plan of 25
// minutes of focus and 5 of break; the program has been started again after a crash at 9:10.
class FocusWiring : public ::testing::Test {
protected:
    FocusWiring() {
        app_.settings.alertAutoHide.set(AlertAutoHide::never);
        app_.settings.focusPlan.set({.focusMinutes = 25, .breakMinutes = 5, .longBreakEvery = {}});
        app_.settings.focusMix.set({.levels = {}, .on = {FocusSound::brown}});
        const auto saved = store_->save([](Store::Writer& writer) {
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
        if (!saved) throw std::runtime_error(saved.error());
        app_.start();
    }

    // Somebody types all the time.
    void workUntil(std::string_view time) {
        while (loop_.now() < at(time)) {
            facts_.setIdle(0);
            loop_.advance(std::min<Duration>(1min, at(time) - loop_.now()));
        }
    }
    static Instant at(std::string_view time) {
        return *parseIso8601("2026-03-02T" + std::string(time) + "+01:00");
    }
    // What is on the screen, and what waits behind it.
    std::string shown() const {
        const auto& model = app_.alerts.model();
        std::string all = model.isHidden() ? "nothing" : model.content()->title;
        for (const auto& entry : app_.alerts.queue().waiting) {
            const auto* focus = std::get_if<FocusAlert>(&entry.source);
            all += ", " + (focus ? focus->title() : entry.title);
        }
        return all;
    }
    std::string status() const {
        const auto& session = *app_.focus.session();
        return session ? statusText(*session, loop_.now()) : "no session";
    }
    std::string block() const {
        const FocusBlock last = store_->focusBlocks().back();
        return calendar_.formatTime(last.start) + "-" +
               (last.end ? calendar_.formatTime(*last.end) : "") + " " +
               std::to_string(last.focusedSeconds) + (last.finished ? " finished" : "");
    }
    std::string hold() const {
        const auto& current = *hold_.current();
        return current ? current->text(calendar_, loop_.now()) : "nothing";
    }

    test::TemporaryFolder folder_;
    SimulatedEventLoop loop_{at("09:30:00")};
    Calendar calendar_{"Europe/Berlin", "en_GB"};
    test::FakeScreens screens_;
    FakeAudio audio_;
    Defaults defaults_;
    std::unique_ptr<Store> store_ = std::move(Store::open(folder_.path / "Tendel.store").value());
    test::FakeFacts facts_{loop_};
    mutable TendelApp app_{{.loop = loop_,
                            .calendar = calendar_,
                            .screens = screens_,
                            .audio = audio_,
                            .presence = facts_.sources()},
                           defaults_,
                           *store_};
    AlertHoldMonitor hold_{app_.scheduler, app_.presence.state(), app_.focus, loop_};
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
        if (!*app_.focus.session()) app_.focus.start();
        workUntil(until);
        EXPECT_EQ(shown(), title);
        app_.alerts.actions().focus(action);
        EXPECT_EQ(this->status(), status);
        EXPECT_EQ(block(), row);
    }
    loop_.advance(1s);
    EXPECT_EQ(shown(), "Water") << "held for the extension";
    app_.alerts.actions().skip();
    loop_.advance(1s);

    app_.focus.extendBreak();
    workUntil("10:08:00");
    EXPECT_EQ(shown(), "Break's over");
    app_.alerts.actions().focus(FocusAlertAction::extendBreak);
    EXPECT_EQ(status(), "Break · round 1 · 5 min left · then round 2");
    workUntil("10:14:00");
    EXPECT_EQ(shown(), "Break's over");
    app_.alerts.actions().focus(FocusAlertAction::startFocus);
    EXPECT_EQ(status(), "Focusing · round 2 · 25 min left · then a 5 min break");
    EXPECT_EQ(block(), "10:14- 0");
    loop_.advance(1s);
    EXPECT_EQ(shown(), "nothing");
    app_.willTerminate();
    EXPECT_EQ(block(), "10:14-10:14 1");
}

TEST_F(FocusWiring, ACallSilencesTheSoundsAndHoldsTheAnnouncement) {
    app_.focus.start();
    EXPECT_TRUE(audio_.isOpen);
    workUntil("09:50:00");
    facts_.microphone.found->push_back({.pid = 7});  // of which nobody tells
    loop_.advance(20s);
    EXPECT_FALSE(app_.sounds.isPlaying());
    EXPECT_FALSE(audio_.isOpen);
    workUntil("10:03:00");
    EXPECT_EQ(shown(), "nothing");
    EXPECT_EQ(hold(), "In a call · 1 reminder waits");
    facts_.setMicrophone(false);
    loop_.advance(1s);
    EXPECT_EQ(shown(), "Break's over") << "and nothing of the break that began meanwhile";
    loop_.advance(3s);
    EXPECT_EQ(shown(), "Break's over, Water");
}

TEST_F(FocusWiring, WhoComesBackFindsTheAnnouncementFirst) {
    workUntil("09:32:00");
    app_.focus.start();
    facts_.setLocked(true);
    EXPECT_FALSE(app_.sounds.isPlaying());
    loop_.advanceTo(at("10:01:00"));
    EXPECT_EQ(block(), "09:32-09:57 1500 finished");
    facts_.setLocked(false);
    facts_.setIdle(0);
    loop_.advance(5s);
    EXPECT_EQ(shown(), "Time for a 5 min break, Water");
    EXPECT_FALSE(app_.sounds.isPlaying()) << "no mix for breaks";
}

TEST_F(FocusWiring, TheLineTellsTheTimeThatIsLeft) {
    EXPECT_EQ(hold(), "nothing");
    workUntil("09:47:30");
    app_.focus.start();
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
    app_.focus.extendFocus();
    app_.scheduler.pause(at("11:00:00"));
    EXPECT_EQ(hold(), "Paused until 11:00");
    app_.scheduler.resume();
    EXPECT_EQ(hold(), "Five more minutes · round 1 · 5 min left · then a 5 min break");
    app_.focus.pause();
    EXPECT_EQ(hold(), "nothing");
}

}  // namespace
}  // namespace tendel

#include <gtest/gtest.h>

#include "app/TendelApp.h"
#include "base/SimulatedEventLoop.h"
#include "platform/silent/SilentAudio.h"
#include "support/FakeDesktop.h"
#include "support/FakeFacts.h"
#include "support/TemporaryFolder.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

// The whole application on a Monday at 9:30 in Berlin, with a timed break every half hour from
// 10:00 and a plain reminder at every full hour.
class PresenceWiring : public ::testing::Test {
protected:
    PresenceWiring() {
        app_.settings.alertAutoHide.set(AlertAutoHide::never);
        const auto saved = store_->save([](Store::Writer& writer) {
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
    // What is on the screen, what waits behind it and what is kept.
    std::string state() const {
        const auto& model = app_.alerts.model();
        std::string all = model.isHidden() ? "nothing" : model.content()->title;
        if (!model.isHidden() && model.content()->notice)
            all += " (" + *model.content()->notice + ")";
        for (const auto& entry : app_.alerts.queue().waiting)
            all += ", " + entry.title;
        for (const auto& item : *app_.scheduler.kept())
            all += "; kept " + item.title;
        return all;
    }
    std::string history() const {
        std::string all;
        for (const ReminderEvent& event : store_->events())
            all += calendar_.formatTime(event.fireDate) + " " + event.reminderTitle + " " +
                   event.outcomeRaw + "; ";
        return all;
    }

    test::TemporaryFolder folder_;
    SimulatedEventLoop loop_{at("09:30:00")};
    Calendar calendar_{"Europe/Berlin", "en_GB"};
    test::FakeScreens screens_;
    SilentAudio audio_;
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
};

TEST_F(PresenceWiring, ACallTakesTheAlertsAndGivesThemBack) {
    workUntil("10:00:05");
    EXPECT_EQ(state(), "Stretch, Water");
    facts_.setMicrophone(true);
    loop_.advance(1s);
    EXPECT_EQ(state(), "nothing; kept Stretch; kept Water");
    workUntil("10:40:00");  // one of them falls due once more
    facts_.setMicrophone(false);
    loop_.advance(2900ms);
    EXPECT_EQ(state(), "nothing; kept Stretch; kept Water");
    loop_.advance(1s);
    EXPECT_EQ(state(), "Stretch (Held during your call), Water");
    app_.alerts.actions().done();
    loop_.advance(5s);
    app_.alerts.actions().skip();
    EXPECT_EQ(history(), "10:00 Stretch done; 10:00 Water skipped; ");
}

TEST_F(PresenceWiring, FindsACallThatNobodyToldOfWhileAnAlertIsUp) {
    workUntil("10:00:05");
    facts_.microphone.found->push_back({.pid = 7});
    loop_.advance(16s);
    EXPECT_EQ(state(), "nothing; kept Stretch; kept Water");

    // Nothing is up any more: no look before the user could be away.
    facts_.setMicrophone(false);
    loop_.advance(5s);
    app_.alerts.actions().skipAll();
    loop_.advance(5s);
    facts_.asked.clear();
    facts_.setIdle(0);
    loop_.advance(4min);
    EXPECT_EQ(facts_.asked, "");
}

TEST_F(PresenceWiring, AwayCountsBreaksAndKeepsTheRest) {
    workUntil("09:55:00");
    loop_.advanceTo(at("11:10:00"));  // nobody touches anything
    EXPECT_EQ(state(), "nothing; kept Water");
    facts_.setIdle(0);
    loop_.advance(6s);
    EXPECT_EQ(state(), "Water (Missed at 10:00 · you were away)");
    EXPECT_EQ(history(),
              "10:00 Stretch breakTaken; 10:30 Stretch breakTaken; 11:00 Stretch breakTaken; ");
}

TEST_F(PresenceWiring, APresentationHoldsAndALockTakesOverButNeverABreakThatRuns) {
    workUntil("10:00:05");
    app_.alerts.actions().start();
    facts_.setLocked(true);
    EXPECT_EQ(state(), "Stretch; kept Water");
    loop_.advance(2min);
    EXPECT_EQ(state(), "nothing; kept Water");
    EXPECT_EQ(history(), "10:00 Stretch done; ");

    facts_.setFilm(true);
    facts_.setFullScreen(true);
    facts_.setLocked(false);
    workUntil("10:30:05");
    EXPECT_EQ(state(), "nothing; kept Water; kept Stretch");
    facts_.setFullScreen(false);  // told once the windows have settled
    loop_.advance(5s);
    EXPECT_EQ(state(), "Water (Missed at 10:00 · you were away), Stretch");
    app_.alerts.actions().done();
    loop_.advance(5s);
    EXPECT_EQ(state(), "Stretch (Held during your presentation)");
}

TEST_F(PresenceWiring, SleepDropsWhatItWentThrough) {
    workUntil("09:55:00");
    facts_.system.set(SystemState::screensAsleep, true);
    loop_.sleep(95min);
    facts_.system.set(SystemState::screensAsleep, false);
    facts_.setIdle(0);
    EXPECT_EQ(app_.scheduler.upcoming()->value().fireDate, at("12:00:00"));
    loop_.advance(10s);
    EXPECT_EQ(state() + history(), "nothing");
    workUntil("12:00:00");
    EXPECT_EQ(state(), "Stretch, Water");
}

}  // namespace
}  // namespace tendel

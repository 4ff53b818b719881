#include "alerts/NotchAlertController.h"

#include <gtest/gtest.h>

#include "support/FakeDesktop.h"
#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

const ScreenInfo left{.frame = {0, 0, 1000, 800}, .menuBarHeight = 24};
const ScreenInfo right{.frame = {1000, 0, 2000, 900},
                       .safeAreaTop = 32,
                       .auxiliaryTopLeftWidth = 900,
                       .auxiliaryTopRightWidth = 900};

class NotchAlertControllerTest : public ::testing::Test, protected test::ReminderServices {
protected:
    NotchAlertControllerTest() : ReminderServices("2026-03-02T10:00:00+01:00") {
        controller.panel = &panel;
        scheduler.presenter = &controller;
    }

    void due(const std::vector<ReminderId>& ids, Duration after = {}) {
        Upcoming upcoming{.items = {}, .fireDate = ten + after};
        for (const ReminderId id : ids)
            upcoming.items.push_back(Upcoming::Item::of(*store->find(id)));
        controller.present(upcoming);
    }
    // Until what was due is open and settled.
    void open() { loop.advance(1s); }
    void answer(const std::function<void()>& action) {
        action();
        open();
    }
    // What the person sees: title, check mark, number of those that wait; "-" without an alert.
    std::string seen() {
        if (!panel.shown || model.phase() == NotchAlertPhase::hidden) return "-";
        if (model.showsCompletion()) return "✓ " + model.completionMessage();
        const int count = model.content()->queuedCount;
        return model.content()->title + (count > 0 ? " +" + std::to_string(count) : "");
    }

    const Instant ten = loop.now();
    test::FakeScreens screens;
    test::FakeSounds sounds;
    test::FakePanel panel;
    test::FakePill pill;
    NotchAlertController controller{settings, *store, loop, calendar, scheduler, screens, sounds};
    NotchAlertModel& model = controller.model();
    const NotchAlertActions& actions = controller.actions();
};

TEST_F(NotchAlertControllerTest, ShowsABatchOneByOneAndRecordsEachAnswer) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes", {.durationSeconds = 20}),
                          add("Stand")};
    scheduler.start();
    settings.snoozeMinutes.set(10);
    due(ids);
    open();
    EXPECT_EQ(seen(), "Stretch +3");
    std::string historyWhenNextCame;
    const auto watch = model.changed.connect([&](auto) {
        if (model.content()->title == "Water" && historyWhenNextCame.empty())
            historyWhenNextCame = takeHistory();
    });
    actions.done();
    loop.advance(749ms);
    EXPECT_EQ(seen(), "✓ Nice work!");
    loop.advance(1ms);
    EXPECT_EQ(seen(), "Water +2") << "without tucking in between";
    EXPECT_EQ(historyWhenNextCame, "10:00 Stretch done");
    open();
    settings.snoozeMinutes.set(20);
    actions.snooze();
    EXPECT_EQ((*scheduler.upcoming())->fireDate, loop.now() + 10min) << "what the button said";
    EXPECT_EQ(seen(), "Eyes +1") << "no check mark";
    open();
    EXPECT_TRUE(model.content()->offersHadBreak);
    actions.hadBreak();
    EXPECT_EQ(seen(), "✓ Got it · break counted");
    open();
    answer(actions.skip);
    EXPECT_EQ(panel.shown, std::nullopt);
    EXPECT_EQ(takeHistory(), "10:00 Water snoozed, 10:00 Eyes breakTaken, 10:00 Stand skipped");

    due({ids[0]});
    open();
    actions.done();
    loop.advance(100ms);
    due({ids[3]});
    EXPECT_EQ(seen(), "✓ Nice work!") << "what falls due meanwhile does not cut it short";
    loop.advance(3s);
    EXPECT_EQ(seen(), "Stand");
}

TEST_F(NotchAlertControllerTest, HidesAfterTheUnhoveredTimeThatIsSet) {
    struct Row {
        AlertAutoHide setting;
        Duration hovered;
        Duration hides;  // after it was shown, which takes 260 ms until it is open
    };
    for (const auto& [setting, hovered, hides] : {
             Row{AlertAutoHide::after10Seconds, 0s, 10s + 250ms},
             Row{AlertAutoHide::after1Minute, 20s, 80s},
         }) {
        settings.alertAutoHide.set(setting);
        due({add("Stretch")});
        model.setHovered(true);
        loop.advance(hovered);
        model.setHovered(false);
        loop.advance(hides - hovered - 1ms);
        EXPECT_EQ(takeHistory(), "");
        loop.advance(1ms);
        EXPECT_EQ(takeHistory(), "10:00 Stretch expired");
        open();
        EXPECT_EQ(seen(), "-");
    }
    settings.alertAutoHide.set(AlertAutoHide::never);
    const auto stretch = add("Stretch"), water = add("Water"), eyes = add("Eyes");
    due({stretch});
    open();
    EXPECT_EQ(loop.nextDue(), std::nullopt) << "nothing needs to wake up";
    due({water});
    loop.advance(100s);
    edit(water, [](Reminder& r) { r.title = "Tea"; });
    EXPECT_EQ(loop.nextDue(), loop.monotonicNow() + 300s + 1us) << "when the one behind is stale";
    loop.advance(50s);
    loop.setWallClock(loop.now() + 1h);
    EXPECT_EQ(loop.nextDue(), loop.monotonicNow() + 300s + 1us) << "nobody has waited longer";
    loop.advance(50s);
    due({stretch, eyes});
    EXPECT_EQ(loop.nextDue(), loop.monotonicNow() + 250s + 1us) << "the older one's";
    loop.advance(251s);
    EXPECT_EQ(seen(), "Stretch +1");
    EXPECT_EQ(takeHistory(), "10:00 Stretch expired, 10:00 Tea expired");
}

TEST_F(NotchAlertControllerTest, TakesNoAnswerThatIsNotForTheShownAlert) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes")};
    actions.done();
    due(ids);
    open();
    actions.done();
    actions.done();
    actions.snooze();
    actions.skipAll();
    EXPECT_EQ(takeHistory(), "10:00 Stretch done") << "the check mark takes no answers";
    open();
    actions.skip();
    actions.skip();
    loop.advance(300ms);
    actions.done();
    EXPECT_EQ(takeHistory(), "10:00 Water skipped") << "the second half of a double click";
    open();
    actions.skip();
    loop.advance(200ms);
    actions.skip();
    actions.start();
    actions.hideInPill();
    actions.focus(FocusAlertAction::skipBreak);
    open();
    actions.done();
    EXPECT_EQ(takeHistory(), "10:00 Eyes skipped") << "nor does the closing motion";
}

TEST_F(NotchAlertControllerTest, FocusAlertsGoFirstAndRecordNothing) {
    due({add("Stretch"), add("Water")});
    open();
    for (const int minutes : {15, 5})
        controller.presentFocusAlert({FocusAlert::Kind::focusEnded, ten + 5min, minutes, false});
    answer(actions.skip);
    EXPECT_EQ(seen(), "Time for a 5 min break +1");
    EXPECT_EQ(model.content()->style, NotchAlertContent::Style::focusEnded);
    controller.presentFocusAlert({});
    open();
    EXPECT_EQ(seen(), "Break's over +1") << "the newer announcement takes its place";
    std::string told;
    controller.onFocusAction = [&](FocusAlertAction action) {
        told += std::to_string(int(action));
        controller.removeFocusAlerts();
    };
    answer([&] { actions.focus(FocusAlertAction::startFocus); });
    EXPECT_EQ(seen(), "Water") << "the one behind was not answered";
    actions.focus(FocusAlertAction::startFocus);
    EXPECT_EQ(told, "2") << "a reminder has no such answer";
    controller.presentSample({});
    answer(actions.skip);
    answer(actions.snooze);
    EXPECT_EQ(seen() + takeHistory(), "-10:00 Stretch skipped, 10:00 Water skipped");
}

TEST_F(NotchAlertControllerTest, ABreakRunsToItsEndWhateverTheClockDoes) {
    for (const bool playsSound : {true, false}) {
        settings.playsBreakEndSound.set(playsSound);
        due({add("Eyes", {.durationSeconds = 60})});
        open();
        actions.start();
        loop.advance(20s);
        loop.setWallClock(loop.now() - 5h);
        EXPECT_EQ(model.content()->breakEndsAt, loop.now() + 40s);
        EXPECT_EQ(loop.nextDue(), loop.monotonicNow() + 40s) << "and sleeps until then";
        actions.start();
        loop.advance(39s);
        EXPECT_EQ(seen(), "Eyes") << "it is not hidden";
        loop.sleep(10min);
        EXPECT_EQ(seen(), "✓ Nice work!");
        EXPECT_EQ(std::exchange(sounds.played, {}), playsSound ? "Glass" : "");
        EXPECT_EQ(takeHistory(), "10:00 Eyes done");
        loop.advance(2s);
    }
}

TEST_F(NotchAlertControllerTest, ABreakMovesIntoThePillOnceThePointerLeaves) {
    controller.pill = &pill;
    struct Row {
        int length;
        Duration hovered;
        std::optional<Duration> moves;
    };
    for (const auto& [length, hovered, moves] : {
             Row{30, 0s, 1500ms},
             Row{30, 3s + 900ms, 4s},
             Row{30, 28s + 700ms, 28s + 750ms},
             Row{30, 28s + 800ms, std::nullopt},  // seen at 29 s, with 1 s left
             Row{1, 0s, std::nullopt},
         }) {
        due({add("Eyes", {.durationSeconds = length})});
        open();
        model.setHovered(true);
        actions.start();
        loop.advance(hovered);
        model.setHovered(false);
        const Duration rest = std::chrono::seconds(length) - hovered;
        const Duration untilMove = moves ? *moves - hovered : rest;
        loop.advance(untilMove - 1ms);
        EXPECT_FALSE(pill.shown);
        loop.advance(1ms);
        EXPECT_EQ(pill.shown.has_value(), moves.has_value()) << length;
        loop.advance(rest - untilMove);
        EXPECT_EQ(std::exchange(pill.ended, {}), moves ? "Nice work!" : "");
        EXPECT_EQ(takeHistory(), "10:00 Eyes done");
        loop.advance(3s);
        EXPECT_EQ(seen(), "-");
    }
}

TEST_F(NotchAlertControllerTest, ABreakInThePillKeepsItsPlaceInTheQueue) {
    controller.pill = &pill;
    due({add("Eyes", {.durationSeconds = 60})});
    open();
    model.setHovered(true);
    actions.start();
    EXPECT_TRUE(model.content()->canHideInPill);
    answer(actions.hideInPill);
    EXPECT_TRUE(pill.shown);
    due({add("Water")});
    EXPECT_EQ(seen(), "-") << "it waits for the end of the break";
    loop.setWallClock(loop.now() + 1h);
    EXPECT_EQ(pill.shown->breakEndsAt, loop.now() + 59s);
    pill.isThere = false;
    screens.become({right});
    open();
    EXPECT_FALSE(pill.shown);
    EXPECT_EQ(seen(), "Eyes +1") << "the pill went with its screen, the break did not";
    pill.isThere = true;
    answer(actions.hideInPill);
    answer(actions.done);
    EXPECT_EQ(pill.ended, "Nice work!");
    EXPECT_EQ(seen(), "Water");
    EXPECT_EQ(takeHistory(), "10:00 Eyes done");
}

TEST_F(NotchAlertControllerTest, ABreakInThePillEndingInTheMomentOfAFiringLosesNeither) {
    controller.pill = &pill;
    add("Water", {.start = {10, 1}});
    due({add("Eyes", {.durationSeconds = 59}), add("Stretch")});
    open();
    actions.start();
    loop.advance(10s);
    scheduler.start();
    loop.advance(49s + 1s);
    EXPECT_EQ(seen(), "Stretch +1");
    answer(actions.skip);
    EXPECT_EQ(seen(), "Water");
    EXPECT_EQ(takeHistory(), "10:00 Eyes done, 10:00 Stretch skipped");
}

TEST_F(NotchAlertControllerTest, LeavingAndGettingBusyHandTheAlertsBack) {
    const auto stretch = add("Stretch"), eyes = add("Eyes", {.durationSeconds = 60});
    due({stretch, eyes});
    due({add("Water")}, 3min);
    controller.presentFocusAlert({});
    controller.presentSample({});
    open();
    controller.userWentAway();
    EXPECT_EQ(kept(), "Stretch 10:00 3, Water 10:03 3");
    EXPECT_EQ(takeHistory(), "10:00 Eyes breakTaken");
    open();
    EXPECT_EQ(seen(), "-");
    scheduler.pause(ten + 1h);
    due({eyes, stretch}, 5min);
    open();
    actions.start();
    controller.userGotBusy(Presence::busyPresentation);
    EXPECT_EQ(kept(), "Stretch 10:05 1");
    controller.userWentAway();
    EXPECT_EQ(seen(), "Eyes") << "a started break goes on";
    loop.advance(60s);
    EXPECT_EQ(takeHistory(), "10:05 Eyes done");
}

TEST_F(NotchAlertControllerTest, FollowsEditsAndDeletionsOfReminders) {
    const std::vector ids{add("Stretch"), add("Water"), add("Eyes", {.durationSeconds = 60}),
                          add("Nap", {.durationSeconds = 60})};
    const auto switchOff = [](Reminder& r) { r.isOn = false; };
    due(ids);
    open();
    edit(ids[0], [](Reminder& r) {
        r.title = "Reach";
        r.setKind(ReminderKind::private_);
    });
    EXPECT_EQ(seen(), "Reach +3");
    EXPECT_EQ(model.content()->kind, ReminderKind::private_);
    remove(ids[1]);
    EXPECT_EQ(seen(), "Reach +2");
    remove(ids[0]);
    open();
    actions.start();
    edit(ids[2], [](Reminder& r) { r.durationSeconds = 20; });
    edit(ids[2], switchOff);
    EXPECT_EQ(seen(), "Eyes +1") << "who started the break goes on with it";
    EXPECT_EQ(model.content()->durationSeconds, 60);
    remove(ids[2]);
    EXPECT_EQ(seen(), "Nap");
    open();
    edit(ids[3], [](Reminder& r) { r.durationSeconds = 0; });
    EXPECT_EQ(model.content()->durationSeconds, std::nullopt);
    actions.start();
    EXPECT_EQ(model.content()->breakEndsAt, std::nullopt);
    edit(ids[3], switchOff);
    loop.advance(5min);
    EXPECT_EQ(seen(), "-");
    EXPECT_EQ(takeHistory(), "") << "withdrawn is neither answered nor missed";
}

TEST_F(NotchAlertControllerTest, OpensWhereThePointerIsAndOutlivesItsScreen) {
    screens.become({left, right});
    screens.at = {1500, 300};
    due({add("Stretch")});
    open();
    EXPECT_EQ(panel.shown, (Rect{1766, 0, 468, 212}));
    EXPECT_TRUE(model.hasNotch);
    screens.at.reset();
    screens.become({left, right});
    EXPECT_EQ(panel.shown->x, 1766) << "nothing happened to its screen";
    screens.become({left});
    EXPECT_EQ(panel.shown, (Rect{266, 0, 468, 204})) << "the pointer is nowhere: the main one";
    EXPECT_FALSE(model.hasNotch);
    screens.become({});
    EXPECT_EQ(seen(), "-");
    due({add("Water")});
    loop.advance(1h);
    EXPECT_EQ(takeHistory(), "10:00 Water expired")
        << "waiting went on, but nobody could see the first";
    settings.alertStyle.set(AlertStyle::compact);
    screens.become({right});
    EXPECT_EQ(panel.shown, (Rect{1780, 0, 440, 112}));
    screens.become({});
    controller.dismissAll();
    open();
    due({add("Eyes")});
    open();
    screens.become({left});
    EXPECT_EQ(seen(), "Eyes") << "it fell due while there was no screen";
}

TEST_F(NotchAlertControllerTest, DismissingAllRecordsNothingAndEndsARunningBreak) {
    controller.pill = &pill;
    due({add("Eyes", {.durationSeconds = 60}), add("Water")});
    open();
    actions.start();
    loop.advance(2s);
    EXPECT_TRUE(pill.shown);
    controller.dismissAll();
    EXPECT_EQ(pill.ended, "nothing");
    loop.advance(1h);
    EXPECT_EQ(seen() + sounds.played + takeHistory(), "-");
    EXPECT_EQ(loop.nextDue(), std::nullopt);
}

}  // namespace
}  // namespace tendel

#include "menubar/NotchLiveController.h"

#include <gtest/gtest.h>

#include "support/FakeDesktop.h"
#include "support/ReminderServices.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using Source = LiveActivity::Source;
using Control = LiveActivity::Control;
using Phase = NotchLivePhase;

const ScreenInfo plain{.name = "HDMI-1", .frame = {0, 0, 1920, 1080}, .menuBarHeight = 24};
const ScreenInfo notched{.name = "eDP-1",
                         .frame = {1920, 100, 1512, 982},
                         .safeAreaTop = 32,
                         .auxiliaryTopLeftWidth = 656,
                         .auxiliaryTopRightWidth = 656};

struct FakeLivePanel : LivePanel {
    std::optional<Rect> shown, live;
    void show(const Rect& frame, const NotchLiveGeometry&) override { shown = frame; }
    void setLiveArea(const Rect& area) override { live = area; }
    void hide() override { shown.reset(); }
};

class NotchLiveControllerTest : public ::testing::Test, protected test::ReminderServices {
protected:
    NotchLiveControllerTest() : ReminderServices("2026-03-02T10:00:00+01:00") {
        screens.screens = {plain, notched};
        live.panel = &panel;
        live.onShowingChange = [this] { told += letter(); };
        live.onControl = [this](Control control) { pressed.push_back(control); };
    }

    void run(Source source, Control control = Control::stop) {
        live.update(
            LiveActivity{.endsAt = loop.now() + 10min, .duration = 600, .controls = {control}},
            source);
    }
    void stop(Source source) { live.update(std::nullopt, source); }
    // Of what is shown: b(reak), f(ocus), p(ause), or -.
    char letter() const { return live.showing() ? "bfp"[int(*live.showing())] : '-'; }
    void point(double x, double y) { live.pointerMoved(std::pair(1920 + x, 100 + y)); }
    void settle() { loop.advance(1s); }

    bool isFullScreen = false;
    std::string told;
    std::vector<Control> pressed;
    test::FakeScreens screens;
    FakeLivePanel panel;
    NotchLiveController live{settings, loop, screens, [this](const ScreenInfo& screen) {
                                 return isFullScreen && screen.name == "eDP-1";
                             }};
    NotchLiveModel& model = live.model();
};

TEST_F(NotchLiveControllerTest, ShowsTheFirstSourceThatMayUseTheNotch) {
    for (const Source source : {Source::pause, Source::focus, Source::microBreak})
        run(source);
    stop(Source::microBreak);
    settings.showsFocusInNotch.set(false);
    settings.showsPausesInNotch.set(false);
    run(Source::microBreak);
    isFullScreen = true;
    live.fullScreenDidChange();
    EXPECT_EQ(letter(), 'b') << "it may stay";
    settings.hidesLivePillInFullScreen.set(true);
    EXPECT_FALSE(live.canShowBreak(notched));
    isFullScreen = false;
    live.fullScreenDidChange();
    EXPECT_EQ(live.restingWidth(plain), std::nullopt);
    screens.become({plain});
    EXPECT_EQ(told, "pfbfp-b-b-");
    EXPECT_EQ(panel.shown, std::nullopt) << "at once: it has no place";
    screens.become({notched, plain});
    EXPECT_EQ(panel.shown, (Rect{1920 + 516, 100, 480, 164}));
    stop(Source::microBreak);
    EXPECT_TRUE(panel.shown) << "while it shrinks";
    settle();
    EXPECT_EQ(panel.shown, std::nullopt);
    EXPECT_EQ(loop.nextDue(), std::nullopt) << "nothing ticks any more";
}

TEST_F(NotchLiveControllerTest, OpensUnderThePointerAndClosesBehindIt) {
    run(Source::focus);
    EXPECT_EQ(panel.live, (Rect{1920 + 612, 100, 288, 32}));
    for (const auto& [x, y, opens] : std::initializer_list<std::tuple<double, double, bool>>{
             {611, 5, false}, {612, 0, true}, {899, 31, true}, {900, 5, false}, {700, 32, false}}) {
        point(x, y);
        loop.advance(200ms);
        point(x, y);  // what moves on inside does not begin anew
        loop.advance(100ms - 1us);
        EXPECT_EQ(model.phase(), Phase::pill);
        loop.advance(1us);
        EXPECT_EQ(model.phase() == Phase::card, opens) << x << " " << y;
        live.pointerMoved(std::nullopt);
        settle();
    }
    point(700, 5);
    settle();
    EXPECT_EQ(panel.live, (Rect{1920 + 556, 100, 400, 124}));
    for (const Duration outside : {349ms, 350ms}) {
        point(557, 123);
        settle();
        EXPECT_EQ(model.phase(), Phase::card);
        point(557, 124);
        loop.advance(outside);
    }
    EXPECT_EQ(model.phase(), Phase::pill);
}

TEST_F(NotchLiveControllerTest, KeepsTheTimeOnlyWhileItIsSeen) {
    std::string texts;
    const auto watch = model.timeChanged.connect([&] { texts += model.time().text + " "; });
    const auto during = [&](Duration span) {
        loop.advance(span);
        return std::exchange(texts, "");
    };
    run(Source::pause);
    EXPECT_EQ(during(9s), "10m 10m 10m 10m ") << "the ring, every 3 s";
    point(700, 5);
    EXPECT_EQ(during(2s), "9:51 9:50 9:49 ");
    live.pointerMoved(std::nullopt);
    during(9min);
    loop.setWallClock(loop.now() + 20s);
    EXPECT_EQ(during(1s), "0:29 0:28 ");
    model.setCovered(true);
    EXPECT_EQ(during(10s), "");
}

TEST_F(NotchLiveControllerTest, PressesOnlyWhatIsOfferedAndSettled) {
    run(Source::pause, Control::resumeReminders);
    settle();
    live.press(Control::stop);
    live.press(Control::resumeReminders);
    run(Source::focus, Control::pause);
    live.press(Control::pause);
    settle();
    live.press(Control::pause);
    EXPECT_EQ(pressed, (std::vector{Control::resumeReminders, Control::pause}));
}

TEST_F(NotchLiveControllerTest, ABreakMovesInIsCoveredAndEndsThere) {
    test::FakeSounds sounds;
    NotchAlertController alerts{settings, *store, loop, calendar, scheduler, screens, sounds};
    alerts.pill = &live;
    const auto wire =
        alerts.model().changed.connect([&](const auto&) { live.alertDidChange(alerts); });
    live.onShowingChange = [&] { alerts.liveDidChange(); };
    const auto due = [&](std::string_view title) {
        const auto id = add(std::string(title), {.durationSeconds = 20});
        alerts.present({{Upcoming::Item::of(*store->find(id))}, loop.now()});
        settle();
    };
    due("Stretch");
    alerts.actions().start();
    loop.advance(5s);
    EXPECT_EQ(letter(), '-') << "the alert is not on the screen with the notch";
    loop.advance(20s);

    screens.at = std::pair(2000, 200);
    due("Eyes");
    alerts.actions().start();
    point(700, 5);
    loop.advance(1500ms);
    EXPECT_EQ(letter(), 'b');
    EXPECT_EQ(alerts.geometry().restingWidth, 288) << "the alert tucks into the pill";
    EXPECT_TRUE(model.isCovered());
    due("Water");
    EXPECT_EQ(model.phase(), Phase::card) << "uncovered, under the pointer";
    loop.advance(17500ms);
    EXPECT_EQ(model.activity()->title, "Nice work!");
    live.showBreak(*alerts.model().content());
    loop.advance(2s);
    EXPECT_EQ(model.phase(), Phase::pill) << "what waited has grown out of it";
    EXPECT_EQ(letter(), 'b') << "another one does not go with the check mark";
    live.endBreak("Nice work!");
    loop.advance(2s);
    EXPECT_EQ(letter(), '-');
    EXPECT_EQ(alerts.geometry().restingWidth, std::nullopt);
    EXPECT_EQ(takeHistory(), "10:00 Stretch done, 10:00 Eyes done");
}

}  // namespace
}  // namespace tendel

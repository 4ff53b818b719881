#include "ui/window/FocusPage.h"

#include <QAccessible>
#include <QLabel>
#include <QPaintEvent>

#include <gtest/gtest.h>

#include "QtEnvironment.h"
#include "ui/theme/Slider.h"
#include "ui/theme/Stepper.h"
#include "ui/window/RoundDots.h"
#include "ui/window/StatusLine.h"

namespace tendel {
namespace {

using namespace test;
using std::chrono::minutes;
using std::chrono::seconds;
using Phase = FocusSession::Phase;

constexpr FocusPlan plan{.focusMinutes = 25, .breakMinutes = 5, .longBreakEvery = 4};

// The window on its Focus section.
struct OpenFocus {
    OpenFocus() {
        desk.app.settings.focusPlan.set(plan);
        window->showSection(SidebarItem::focus);
        QApplication::processEvents();
    }

    FocusPage& page() { return *window->findChild<FocusPage*>(); }
    FocusTimer& timer() { return desk.app.focus; }
    AppSettings& settings() { return desk.app.settings; }
    void let(Duration pass) {
        desk.loop.advance(pass);
        QApplication::processEvents();
    }
    void click(std::string_view name) {
        auto* button = control<QAbstractButton>(page(), name);
        ASSERT_TRUE(button) << name;
        button->click();
        QApplication::processEvents();
    }
    // The keyboard on the control of that name, and a key.
    void press(std::string_view name, Qt::Key key) {
        QWidget* at = control(page(), name);
        ASSERT_TRUE(at) << name;
        at->setFocus(Qt::TabFocusReason);
        test::press(key);
    }
    // What can be done with the timer: "Pause, Skip to Break, Stop".
    std::string buttons() {
        std::string all;
        for (const auto* button :
             page().findChild<FocusTimerView*>()->findChildren<QAbstractButton*>())
            if (button->isVisible())
                all += (all.empty() ? "" : ", ") + button->text().toStdString();
        return all;
    }
    bool shows(std::string_view text) {
        for (const QLabel* label : page().findChildren<QLabel*>())
            if (label->isVisible() && label->text() == toQString(text)) return true;
        return false;
    }

    Desk desk;
    OpenWindow window{desk};
};

TEST(FocusPage, OffersWhatThePhaseAllows) {
    struct Step {
        const char* button;  // pressed, unless the phase goes on by itself
        const char* offered;
        const char* line;
        const char* spoken;
    };
    OpenFocus focus;
    for (const Step& each :
         {Step{nullptr, "Start Focus", "Then a 5 min break", "Focus, 25 min"},
          {"Start Focus", "Pause, Skip to Break, Stop", "Round 1 · then a 5 min break",
           "Focusing, 25 min left"},
          {"Pause", "Resume, Skip to Break, Stop", "Round 1 · then a 5 min break",
           "Paused, 25 min"},
          {"Resume", "Pause, Skip to Break, Stop", "Round 1 · then a 5 min break",
           "Focusing, 25 min left"},
          {"Skip to Break", "Pause, 5 More Minutes of Focus, Skip Break, Stop",
           "Round 1 · then round 2", "Break, 5 min left"},
          {"5 More Minutes of Focus", "Pause, Skip to Break, Stop", "Round 1 · then a 5 min break",
           "Five more minutes, 5 min left"},
          {"Skip to Break", "Pause, 5 More Minutes of Focus, Skip Break, Stop",
           "Round 1 · then round 2", "Break, 5 min left"},
          {"Skip Break", "Start Next Round, 5 More Minutes of Break, Stop", "Ready for round 2",
           "Break's over, 25 min"},
          {"5 More Minutes of Break", "Pause, 5 More Minutes of Focus, Skip Break, Stop",
           "Round 1 · then round 2", "Break, 5 min left"},
          {"Skip Break", "Start Next Round, 5 More Minutes of Break, Stop", "Ready for round 2",
           "Break's over, 25 min"},
          {"Start Next Round", "Pause, Skip to Break, Stop", "Round 2 · then a 5 min break",
           "Focusing, 25 min left"},
          {"Stop", "Start Focus", "Then a 5 min break", "Focus, 25 min"}}) {
        SCOPED_TRACE(each.button ? each.button : "at rest");
        if (each.button) focus.click(each.button);
        EXPECT_EQ(focus.buttons(), each.offered);
        EXPECT_TRUE(focus.shows(each.line));
        EXPECT_EQ(focus.page().findChild<FocusRing*>()->accessibleName().toStdString(),
                  each.spoken);
    }
}

TEST(FocusPage, IsSteeredByTheSpaceKey) {
    OpenFocus focus;
    focus.page().firstFocus()->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Space);
    ASSERT_TRUE(focus.timer().session().get());
    focus.press("Brown Noise level", Qt::Key_Space);  // which has no use for it
    EXPECT_TRUE(focus.timer().session().get()->isPaused());
    focus.press("Brown Noise", Qt::Key_Space);
    EXPECT_TRUE(focus.timer().session().get()->isPaused());
    EXPECT_TRUE(focus.settings().focusMix.get().on.contains(FocusSound::brown));
    // The keyboard is not lost with a button that goes.
    focus.press("Stop", Qt::Key_Space);
    EXPECT_EQ(QApplication::focusWidget(), focus.page().firstFocus());
}

TEST(FocusPage, CountsOnlyWhatCanBeSeen) {
    struct Paints : QObject {
        int count = 0;
        int largest = 0;
        bool eventFilter(QObject*, QEvent* event) override {
            if (event->type() != QEvent::Paint) return false;
            ++count;
            const QRegion& region = static_cast<QPaintEvent*>(event)->region();
            int area = 0;
            for (const QRect& each : region)
                area += each.width() * each.height();
            largest = std::max(largest, area);
            return false;
        }
    } paints;
    OpenFocus focus;
    const auto tickers = [&] {
        int ticking = 0;
        for (const auto* each : focus.window->findChildren<FocusCountdown*>())
            ticking += each->isTicking();
        return ticking;
    };
    auto* ring = focus.page().findChild<FocusRing*>();
    ring->installEventFilter(&paints);
    const auto painted = [&](Duration pass) {
        for (auto left = pass; left > Duration::zero(); left -= seconds(1))
            focus.let(seconds(1));
        return std::exchange(paints.count, 0);
    };
    QApplication::processEvents();
    paints.count = 0;
    EXPECT_EQ(painted(minutes(2)), 0);
    EXPECT_EQ(tickers(), 0);

    focus.desk.app.alerts.model().reduceMotion = true;  // only the time moves
    focus.click("Start Focus");
    paints.count = paints.largest = 0;
    EXPECT_EQ(painted(minutes(2)), 120);
    EXPECT_LT(paints.largest, ring->width() * ring->height() / 5);
    EXPECT_EQ(ring->accessibleName(), "Focusing, 23 min left");

    focus.window->showSection(SidebarItem::workReminders);
    QApplication::processEvents();
    EXPECT_EQ(tickers(), 1);  // the sidebar's, by the minute
    EXPECT_EQ(painted(minutes(1)), 0);
    focus.window->showSection(SidebarItem::focus);
    QApplication::processEvents();
    EXPECT_EQ(ring->accessibleName(), "Focusing, 22 min left");
    focus.click("Pause");
    EXPECT_EQ(tickers(), 0);
    focus.click("Resume");
    focus.window->hide();
    QApplication::processEvents();
    EXPECT_EQ(tickers(), 0);
}

TEST(FocusPage, FadesBetweenPhasesUnlessMotionIsReduced) {
    for (const bool isReduced : {false, true}) {
        OpenFocus focus;
        focus.desk.app.alerts.model().reduceMotion = isReduced;
        auto* ring = focus.page().findChild<FocusRing*>();
        const auto look = [&] { return ring->grab().toImage(); };
        const QImage before = look();
        focus.timer().start();
        const QImage begun = look();
        QTest::qWait(400);
        const QImage after = look();
        EXPECT_NE(after, before);
        EXPECT_EQ(begun == after, isReduced);
    }
}

TEST(FocusPage, TellsTheSessionInTheSidebar) {
    OpenFocus focus;
    focus.timer().start();
    const auto spoken = [&] {
        for (const auto* row : focus.window->findChildren<QAbstractButton*>())
            if (row->text() == "Focus" && !focus.page().isAncestorOf(row))
                return row->accessibleDescription().toStdString();
        return std::string("no row");
    };
    EXPECT_EQ(spoken(), "Focusing · round 1 · 25 min left · then a 5 min break");
    focus.window->showSection(SidebarItem::privateReminders);
    focus.let(minutes(2));
    EXPECT_EQ(spoken(), "Focusing · round 1 · 23 min left · then a 5 min break");
    focus.let(minutes(22));
    EXPECT_EQ(spoken(), "Focusing · round 1 · in its last minute · then a 5 min break");
    const QString foot = focus.window->findChild<StatusLine*>()->accessibleName();
    EXPECT_EQ(foot, "Focusing · in its last minute");
    focus.let(seconds(20));
    EXPECT_EQ(focus.window->findChild<StatusLine*>()->accessibleName(), foot);
    focus.let(seconds(40));
    EXPECT_EQ(spoken(), "Break · round 1 · 5 min left · then round 2");
    focus.timer().pause();
    EXPECT_EQ(spoken(), "Paused · round 1 · then round 2");
    focus.timer().stop();
    EXPECT_EQ(spoken(), "");
}

TEST(FocusPage, EditsThePlanOfTheNextSession) {
    constexpr auto often =
        "A longer break after every %1 focus blocks: three times your break, at "
        "most 30 min.";
    constexpr auto never = "Long breaks are for short breaks of up to 10 min.";
    OpenFocus focus;
    focus.timer().start();
    const auto text = [&](const char* number) { return QString(often).arg(number).toStdString(); };
    EXPECT_TRUE(focus.shows(text("4")));
    focus.click("Focus length: more");
    focus.press("Break length", Qt::Key_Up);
    focus.press("Rounds to a long break", Qt::Key_Down);
    EXPECT_EQ(focus.settings().focusPlan.get(), (FocusPlan{30, 6, 3}));
    EXPECT_TRUE(focus.shows(text("3")));
    EXPECT_EQ(focus.timer().session().get()->plan, plan);
    focus.timer().stop();
    EXPECT_EQ(focus.page().findChild<FocusRing*>()->accessibleName(), "Focus, 30 min");

    focus.press("Rounds to a long break", Qt::Key_Down);
    focus.press("Rounds to a long break", Qt::Key_Down);
    EXPECT_EQ(focus.settings().focusPlan.get().longBreakEvery, std::nullopt);
    EXPECT_TRUE(focus.shows(text("few")));
    focus.press("Rounds to a long break", Qt::Key_Up);
    EXPECT_EQ(focus.settings().focusPlan.get().longBreakEvery, 2);
    // Typed numbers are taken when they are done, within the range.
    for (const auto& [typed, taken] : {std::pair{"52", 52}, {"999", 180}, {"1", 5}, {"", 5}}) {
        focus.press("Focus length", Qt::Key_Home);
        press(Qt::Key_A, Qt::ControlModifier);
        type(typed);
        press(Qt::Key_Return);
        EXPECT_EQ(focus.settings().focusPlan.get().focusMinutes, taken) << typed;
    }
    focus.settings().focusPlan.set({.focusMinutes = 1, .breakMinutes = 11, .longBreakEvery = 0});
    EXPECT_EQ(focus.page().findChildren<Stepper*>()[0]->value(), 1);
    EXPECT_TRUE(focus.shows(never));
    EXPECT_FALSE(focus.page().findChildren<Stepper*>()[2]->isEnabled());
    focus.click("Break length: less");
    EXPECT_TRUE(focus.shows(text("1")));
    EXPECT_EQ(focus.settings().focusPlan.get(), (FocusPlan{1, 10, 0}));
}

TEST(FocusPage, EditsBothMixes) {
    OpenFocus focus;
    AppSettings& settings = focus.settings();
    using Mix = SoundMix;
    focus.click("Ocean");
    EXPECT_EQ(settings.focusMix.get(), (Mix{.levels = {}, .on = {FocusSound::ocean}}));
    auto* slider = control<Slider>(focus.page(), "Ocean level");
    EXPECT_EQ(slider->value(), 60);
    focus.press("Ocean level", Qt::Key_Right);
    QTest::qWait(150);
    EXPECT_EQ(settings.focusMix.get().levels, (decltype(Mix::levels){{FocusSound::ocean, 0.65}}));
    focus.click("Ocean");
    EXPECT_EQ(settings.focusMix.get(), (Mix{.levels = {{FocusSound::ocean, 0.65}}, .on = {}}));
    EXPECT_EQ(slider->value(), 65);

    // A drag turns on, is written a few times only, and ends with the last place.
    int writes = 0;
    const auto counted = settings.breakMix.observe([&] { ++writes; });
    control<QAbstractButton>(*control(focus.page(), "Sounds during"), "Breaks")->click();
    EXPECT_EQ(slider->value(), 60);
    const int middle = slider->height() / 2;
    QTest::mousePress(slider, Qt::LeftButton, {}, {slider->width() / 2, middle});
    for (int x = slider->width() / 2; x >= 0; --x)
        QTest::mouseMove(slider, {x, middle});
    QTest::mouseRelease(slider, Qt::LeftButton, {}, {0, middle});
    EXPECT_EQ(settings.breakMix.get(),
              (Mix{.levels = {{FocusSound::ocean, 0.0}}, .on = {FocusSound::ocean}}));
    EXPECT_LT(writes, 20);
    EXPECT_FALSE(settings.focusMix.get().on.contains(FocusSound::ocean));

    settings.breakMix.set({.levels = {{FocusSound::wind, 0.3}}, .on = {FocusSound::wind}});
    EXPECT_EQ(control<Slider>(focus.page(), "Wind level")->value(), 30);
    EXPECT_TRUE(control<QAbstractButton>(focus.page(), "Wind")->isChecked());
    EXPECT_FALSE(control<QAbstractButton>(focus.page(), "Ocean")->isChecked());
}

TEST(FocusPage, LetsAMixBeHeard) {
    using Row = FocusSoundRules::Row;
    OpenFocus focus;
    FocusSoundController& sounds = focus.desk.app.sounds;
    EXPECT_FALSE(control(focus.page(), "Listen")->isEnabled());
    focus.click("Rain");
    EXPECT_EQ(sounds.preview().get(), Row::focus);
    focus.click("Stop Listening");
    EXPECT_FALSE(sounds.preview().get());
    focus.click("Listen");
    control<QAbstractButton>(*control(focus.page(), "Sounds during"), "Breaks")->click();
    EXPECT_EQ(sounds.preview().get(), Row::breaks);
    focus.click("Mute");
    EXPECT_TRUE(*sounds.isMuted());
    focus.click("Unmute");
    EXPECT_FALSE(*sounds.isMuted());
    focus.press("Volume", Qt::Key_End);
    QTest::qWait(150);
    EXPECT_EQ(*focus.settings().soundVolume, 1.0);
    focus.timer().start();
    EXPECT_FALSE(control(focus.page(), "Listen") || control(focus.page(), "Stop Listening"));
}

TEST(FocusPage, TellsAssistiveProgramsTheLevels) {
    OpenFocus focus;
    auto* slider = control<Slider>(focus.page(), "Fan level");
    auto* seen = QAccessible::queryAccessibleInterface(slider);
    ASSERT_TRUE(seen && seen->valueInterface());
    EXPECT_EQ(seen->role(), QAccessible::Slider);
    EXPECT_EQ(seen->valueInterface()->currentValue().toInt(), 60);
    seen->valueInterface()->setCurrentValue(20);
    EXPECT_EQ(focus.settings().focusMix.get().levels.at(FocusSound::fan), 0.2);
    auto* toggle = QAccessible::queryAccessibleInterface(control(focus.page(), "Fan"));
    EXPECT_EQ(toggle->role(), QAccessible::CheckBox);
    EXPECT_TRUE(toggle->state().checked);
    toggle->actionInterface()->doAction(QAccessibleActionInterface::toggleAction());
    EXPECT_FALSE(toggle->state().checked);
    EXPECT_FALSE(focus.settings().focusMix.get().on.contains(FocusSound::fan));
}

TEST(RoundDots, FollowTheRounds) {
    struct Case {
        std::optional<int> every;
        int breakMinutes;
        Phase phase;
        int round;
        RoundDots::State state;
    };
    for (const Case& each : {
             Case{4, 5, Phase::focus, 1, {4, 0, true, true, false}},
             Case{4, 5, Phase::shortBreak, 3, {4, 3, false, true, false}},
             Case{4, 5, Phase::longBreak, 4, {4, 4, false, true, true}},
             Case{4, 5, Phase::ready, 4, {4, 0, false, true, false}},
             Case{4, 5, Phase::focus, 6, {4, 1, true, true, false}},
             Case{0, 5, Phase::longBreak, 7, {1, 1, false, true, true}},
             Case{4, 11, Phase::focus, 2, {2, 1, true, false, false}},
             Case{{}, 5, Phase::ready, 2, {3, 2, false, false, false}},
             Case{{}, 5, Phase::focus, 30, {8, 7, true, false, false}},
         }) {
        const FocusSession session{
            .plan = {25, each.breakMinutes, each.every}, .phase = each.phase, .round = each.round};
        EXPECT_EQ(RoundDots::stateOf(session, true), each.state)
            << each.every.value_or(-1) << ' ' << each.round;
    }
    EXPECT_EQ(RoundDots::stateOf({.plan = plan}, false), (RoundDots::State{4, 0, false, true}));
}

}  // namespace
}  // namespace tendel

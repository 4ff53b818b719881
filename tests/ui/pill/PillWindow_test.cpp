#include "ui/pill/PillWindow.h"

#include <gtest/gtest.h>

#include <QAccessible>
#include <QApplication>
#include <QWidget>

#include "platform/linux/LinuxEventLoop.h"
#include "platform/qt/QtScreens.h"
#include "storage/Defaults.h"
#include "support/RealDesktop.h"
#include "ui/alert/AlertWindow.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using test::click, test::isColor, test::movePointer, test::OtherWindow, test::PaintCounter,
    test::run;
using Control = LiveActivity::Control;
using Source = LiveActivity::Source;

// On a screen of 1280 × 800 with a notch of 200 × 32 (see main).
constexpr QPoint middle{640, 16};
constexpr QPoint away{640, 700};

class PillWindowTest : public testing::Test {
protected:
    PillWindowTest() {
        other_.setStyleSheet(QStringLiteral("background: #3366cc"));
        other_.setGeometry(100, 1, 1000, 500);
        other_.show();
        EXPECT_SOON(other_.isActiveWindow());
        movePointer(away);
        live_.panel = &window_;
        live_.onControl = [this](Control control) { pressed_.push_back(control); };
        live_.onOpen = [this](Source) { ++opened_; };
    }

    void start(double left = 1500) {
        live_.update(LiveActivity{.systemImage = "target",
                                  .tint = LiveActivity::Tint::focus,
                                  .title = "Focusing",
                                  .endsAt = loop_.now() + seconds(left),
                                  .duration = 1500,
                                  .controls = {Control::pause, Control::stop, Control::mute},
                                  .opensOnClick = true},
                     Source::focus);
        ASSERT_SOON(isColor({504, 10}, Qt::black));
        test::runFor(700);
    }

    QWidget* topLevel(const char* type) const {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->inherits(type)) return widget;
        return nullptr;
    }
    QWidget* view() const { return topLevel("tendel::PillView"); }
    QAbstractButton* button(const QString& name) const {
        for (auto* button : view()->findChildren<QAbstractButton*>())
            if (button->isVisible() && button->text() == name) return button;
        return nullptr;
    }
    // Whether a click there reaches the window below.
    bool goesThrough(QPoint at) {
        const int before = other_.clicks;
        click(at);
        return test::runUntil([&] { return other_.clicks > before; }, 400);
    }
    // The windows of the screen that are ours, topmost first: p(ill), a(lert), o(ther).
    std::string order() const {
        std::string all;
        for (const QString& line : run("xwininfo -root -tree").split('\n'))
            all += line.contains("Tendel live pill") ? "p"
                   : line.contains("Tendel alert")   ? "a"
                   : line.contains("\"film\"")       ? "f"
                                                     : "";
        return all;
    }

    LinuxEventLoop loop_;
    QtScreens screens_;
    OtherWindow other_;
    Defaults defaults_;
    AppSettings settings_{defaults_};
    NotchLiveController live_{settings_, loop_, screens_, [](const ScreenInfo&) { return false; }};
    NotchAlertModel alertModel_{loop_};
    NotchAlertActions actions_;
    std::vector<Control> pressed_;
    int opened_ = 0;
    OverlayStack stack_;
    AlertWindow alert_{alertModel_, actions_, loop_, stack_};
    PillWindow window_{live_, loop_, stack_};
};

TEST_F(PillWindowTest, IsThereForThePointerOnlyInItsLiveAreaAndUnmappedWhileHidden) {
    start();
    EXPECT_FALSE(goesThrough({512, 16})) << "left of the notch";
    EXPECT_EQ(opened_, 1);
    movePointer(away);
    EXPECT_SOON(live_.model().phase() == NotchLivePhase::pill);
    test::runFor(600);
    for (const QPoint at : {QPoint(492, 16), QPoint(788, 16), QPoint(640, 34), QPoint(640, 100)})
        EXPECT_TRUE(goesThrough(at)) << at.x() << " " << at.y();

    live_.update(std::nullopt, Source::focus);
    EXPECT_SOON(!view()->isVisible());
    EXPECT_TRUE(goesThrough(middle));
    EXPECT_TRUE(other_.isActiveWindow());
}

TEST_F(PillWindowTest, ThePointerOpensTheCardWhoseButtonsAnswer) {
    start();
    movePointer(middle);
    ASSERT_SOON(button("Pause") && button("Stop"));
    EXPECT_SOON(isColor({640, 122}, Qt::black));
    test::runFor(700);
    EXPECT_EQ(live_.model().phase(), NotchLivePhase::card);
    const auto* mute = button("Mute");
    ASSERT_TRUE(mute);
    click(mute->mapToGlobal(mute->rect().center()));
    EXPECT_SOON(pressed_ == std::vector{Control::mute});
    EXPECT_EQ(opened_, 0) << "a button is not the card";
    EXPECT_FALSE(goesThrough({640, 44}));
    EXPECT_EQ(opened_, 1);
    EXPECT_TRUE(other_.isActiveWindow());
    const auto* told = QAccessible::queryAccessibleInterface(view());
    EXPECT_TRUE(told->text(QAccessible::Name).startsWith("Focusing, 24:"))
        << told->text(QAccessible::Name).toStdString();

    EXPECT_TRUE(goesThrough({640, 128})) << "below the card";
    EXPECT_SOON(!button("Pause") && !isColor({640, 100}, Qt::black));
}

TEST_F(PillWindowTest, StaysBelowTheAlertWhateverComesAndIsBackAfterwards) {
    start();
    const auto hasText = [&] {
        for (int x = 745; x < 776; ++x)
            if (!isColor({x, 16}, Qt::black)) return true;
        return false;
    };
    EXPECT_TRUE(hasText());
    const ScreenInfo screen = screens_.all().front();
    const auto geometry =
        NotchAlertGeometry::of(screen, live_.restingWidth(screen), AlertStyle::full);
    alert_.show(geometry.panelFrame(screen.frame), geometry);
    // Before the alert has moved, it is what the pill is.
    EXPECT_SOON(!hasText());
    EXPECT_TRUE(isColor({504, 16}, Qt::black) && !isColor({499, 16}, Qt::black));
    EXPECT_EQ(order(), "ap");

    OtherWindow film;
    film.setWindowTitle("film");
    film.setStyleSheet(QStringLiteral("background: #cc3333"));
    film.showFullScreen();
    ASSERT_SOON(isColor({20, 400}, QColor(0xcc, 0x33, 0x33)));
    live_.update(LiveActivity{.title = "Paused", .status = "Ready", .controls = {Control::resume}},
                 Source::focus);
    EXPECT_SOON(order() == "apf") << order();
    window_.hide();
    alert_.hide();
    window_.show(live_.geometry().panelFrame(screen.frame), live_.geometry());
    alert_.show(geometry.panelFrame(screen.frame), geometry);
    EXPECT_SOON(order() == "apf") << order();
    alert_.hide();
    EXPECT_SOON(hasText());
    film.raise();
    test::runFor(200);
    EXPECT_TRUE(isColor({504, 16}, Qt::black));
}

TEST_F(PillWindowTest, DrawsNothingAtRestAndOnlyTheTimeInTheLastMinute) {
    start(70);
    PaintCounter counter;
    view()->installEventFilter(&counter);
    const auto isQuiet = [&] {
        counter.paints = 0;
        test::runFor(500);
        return counter.paints == 0;
    };
    EXPECT_TRUE(test::runUntil(isQuiet));
    start(50);
    counter.paints = 0;
    counter.painted = {};
    test::runFor(2100);
    EXPECT_GE(counter.paints, 2);
    EXPECT_LE(counter.paints, 3);
    int pixels = 0;
    for (const QRect& r : counter.painted)
        pixels += r.width() * r.height();
    EXPECT_LT(pixels, 64 * 32) << "symbol and time, not what is between them";
}

}  // namespace
}  // namespace tendel

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    qputenv("TENDEL_SIMULATE_NOTCH", "200x32");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}

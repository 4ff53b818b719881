#include "ui/alert/AlertWindow.h"

#include <gtest/gtest.h>

#include <QApplication>

#include "platform/linux/LinuxEventLoop.h"
#include "platform/qt/QtScreens.h"
#include "support/RealDesktop.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using test::click, test::isColor, test::movePointer, test::OtherWindow, test::PaintCounter,
    test::run;

class AlertWindowTest : public testing::Test {
protected:
    AlertWindowTest() {
        other_.setStyleSheet(QStringLiteral("background: #3366cc"));
        other_.setGeometry(100, 30, 1000, 500);
        other_.show();
        EXPECT_SOON(other_.isActiveWindow());
        movePointer({640, 700});

        actions_.done = [this] { answers_ += 'd'; };
        actions_.snooze = [this] { answers_ += 'z'; };
        actions_.skip = [this] { answers_ += 's'; };
        actions_.skipAll = [this] { answers_ += 'a'; };
        actions_.hadBreak = [this] { answers_ += 'h'; };
        model_.reduceMotion = true;  // opens at once; the motion itself is the model's
        content_.id = AlertId{1};
        content_.title = "Look away";
        content_.systemImage = "eye";
    }

    void open() {
        const ScreenInfo screen = screens_.all().front();
        geometry_ = NotchAlertGeometry::of(screen, std::nullopt, model_.style);
        window_.show(geometry_.panelFrame(screen.frame), geometry_);
        model_.present(content_);
        ASSERT_SOON(isColor(body(), Qt::black));
        test::runFor(400);
    }

    QWidget* view() const {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->inherits("tendel::AlertView")) return widget;
        return nullptr;
    }
    QWidget* button(const QString& name) const {
        for (auto* button : view()->findChildren<QAbstractButton*>())
            if (button->isVisible() && button->text() == name) return button;
        return nullptr;
    }
    QPoint middleOf(const QString& name) const {
        QWidget* found = button(name);
        EXPECT_TRUE(found) << name.toStdString();
        return found ? found->mapToGlobal(found->rect().center()) : QPoint();
    }
    // Inside the alert, where it holds nothing.
    QPoint body() const { return view()->mapToGlobal(QPoint(view()->width() / 2, 4)); }

    LinuxEventLoop loop_;
    QtScreens screens_;
    OtherWindow other_;
    NotchAlertModel model_{loop_};
    NotchAlertActions actions_;
    NotchAlertContent content_;
    NotchAlertGeometry geometry_;
    std::string answers_;
    OverlayStack stack_;
    AlertWindow window_{model_, actions_, loop_, stack_};
};

TEST_F(AlertWindowTest, LetsClicksThroughOutsideItsShapeAndIsUnmappedWhileHidden) {
    open();
    const QPoint corner = view()->mapToGlobal(QPoint());
    const auto outline = geometry_.outline(NotchAlertPhase::expanded);
    const int left = static_cast<int>((view()->width() - outline.width) / 2 + outline.topRadius);
    const int bottom = static_cast<int>(outline.height);
    struct Case {
        QPoint at;
        bool isInside;
    };
    int through = 0;
    for (const Case& c : {Case{{left + 3, 60}, true}, Case{{left - 3, 60}, false},
                          Case{{left + 3, bottom - 3}, false},  // outside the round corner
                          Case{{left + 60, bottom - 3}, true}, Case{{left + 60, bottom + 3}, false},
                          Case{{view()->width() / 2, bottom + 20}, false}}) {
        through += !c.isInside;
        click(corner + c.at);
        EXPECT_TRUE(test::runUntil([&] { return other_.clicks == through; }, 500))
            << c.at.x() << " " << c.at.y() << ": " << other_.clicks << " of " << through;
    }
    const QString info = QStringLiteral("xwininfo -id %1").arg(view()->winId());
    EXPECT_TRUE(run(info).contains("IsViewable"));
    window_.hide();
    EXPECT_SOON(run(info).contains("IsUnMapped"));
}

TEST_F(AlertWindowTest, StandsAboveWindowsThatComeLaterAndAreFullScreen) {
    open();
    OtherWindow film;
    film.setStyleSheet(QStringLiteral("background: #cc3333"));
    film.showFullScreen();
    ASSERT_SOON(isColor({20, 400}, QColor(0xcc, 0x33, 0x33)));
    film.raise();
    film.activateWindow();
    test::runFor(200);
    EXPECT_TRUE(isColor(body(), Qt::black));
    click(middleOf("Done"));
    EXPECT_SOON(answers_ == "d");
    EXPECT_EQ(film.clicks, 0);
}

TEST_F(AlertWindowTest, SurvivesItsMonitorGoing) {
    run("xrandr --setmonitor L 640/170x800/200+0+0 screen");
    run("xrandr --setmonitor R 640/170x800/200+640+0 none");
    ASSERT_SOON(screens_.all().size() == 2);
    bool isTold = false;
    const Subscription changes = screens_.changed.connect([&] { isTold = true; });
    open();
    const ScreenInfo right = screens_.all()[1].frame.x > 0 ? screens_.all()[1] : screens_.all()[0];
    window_.show(geometry_.panelFrame(right.frame), geometry_);
    ASSERT_SOON(isColor({960, 4}, Qt::black));

    run("xrandr --delmonitor R");
    run("xrandr --delmonitor L");
    ASSERT_SOON(isTold && screens_.all().size() == 1);
    const ScreenInfo whole = screens_.all().front();
    window_.show(geometry_.panelFrame(whole.frame), geometry_);
    EXPECT_SOON(isColor({640, 4}, Qt::black) && !isColor({960, 60}, Qt::black));
    click(middleOf("Done"));
    EXPECT_SOON(answers_ == "d") << answers_;
}

TEST_F(AlertWindowTest, KnowsWhetherThePointerIsOverItsShape) {
    movePointer({640, 60});
    open();
    EXPECT_SOON(model_.isHovered()) << "it grew under the pointer";
    const QPoint beside = view()->mapToGlobal(QPoint(20, 60));
    movePointer(beside);
    EXPECT_SOON(!model_.isHovered());
    movePointer(middleOf("Done"));
    EXPECT_SOON(model_.isHovered());
    window_.hide();
    EXPECT_FALSE(model_.isHovered());
}

TEST_F(AlertWindowTest, TurnsToFurtherAnswersWithoutGivingOneByADoubleClick) {
    content_.queuedCount = 2;
    content_.durationSeconds = 20;
    content_.offersHadBreak = true;
    open();
    EXPECT_FALSE(button("Skip All"));
    click(middleOf("More answers"), 2);
    EXPECT_SOON(button("More answers") != nullptr);
    click(middleOf("More answers"));
    ASSERT_SOON(button("Skip All") != nullptr);
    EXPECT_EQ(answers_, "");
    click(middleOf("I had a break"));
    EXPECT_SOON(answers_ == "h") << answers_;
    movePointer({640, 700});
    EXPECT_SOON(button("Done") && !button("Skip All"));
}

TEST_F(AlertWindowTest, DrawsNothingAtRestAndOnlyTheTimeWhileABreakRuns) {
    content_.durationSeconds = 20;
    open();
    PaintCounter counter;
    view()->installEventFilter(&counter);
    // Once the last of the opening has been drawn.
    const auto isQuiet = [&] {
        counter.paints = 0;
        test::runFor(500);
        return counter.paints == 0;
    };
    EXPECT_TRUE(test::runUntil(isQuiet));

    content_.breakEndsAt = loop_.now() + 20s;
    model_.present(content_);
    test::runFor(600);
    counter.paints = 0;
    counter.painted = {};
    test::runFor(2100);
    EXPECT_GE(counter.paints, 2);
    EXPECT_LE(counter.paints, 3);
    EXPECT_LT(counter.painted.boundingRect().width() * counter.painted.boundingRect().height(),
              100 * 40);
}

}  // namespace
}  // namespace tendel

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    return RUN_ALL_TESTS();
}

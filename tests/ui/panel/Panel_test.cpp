#include "ui/panel/Panel.h"

#include <gtest/gtest.h>

#include <QUrlQuery>

#include "../window/QtEnvironment.h"
#include "support/WholeApplication.h"
#include "ui/panel/Beads.h"
#include "ui/panel/NextReminderView.h"
#include "ui/panel/PanelCommands.h"
#include "ui/panel/PanelPlacement.h"
#include "ui/panel/PanelRow.h"
#include "ui/panel/PanelWindow.h"

namespace tendel {
namespace {

using namespace test;
using namespace std::chrono_literals;
using Bead = NextReminderCard::Bead;

std::vector<Bead> beads(std::string_view letters) {
    std::vector<Bead> all;
    for (const char letter : letters)
        all.push_back(letter == 'd' ? Bead::done : letter == 'm' ? Bead::missed : Bead::coming);
    return all;
}

TEST(Beads, JoinNeighboursAndKeepTheirShares) {
    const struct {
        const char* day;
        std::size_t most;
        const char* row;
    } cases[] = {{"", 4, ""},
                 {"dmc", 4, "dmc"},
                 {"dmcc", 4, "dmcc"},
                 {"ddddcccc", 4, "ddcc"},
                 {"dddddddddmccccc", 5, "dddcc"},
                 {"dmdmdmdmcccc", 3, "dmc"},
                 {"ddmddmddmddm", 4, "dmdd"},
                 {"dddcc", 4, "ddcc"},
                 {"mcccccccccccc", 1, "c"}};
    for (const auto& [day, most, row] : cases)
        EXPECT_EQ(joined(beads(day), most), beads(row)) << day;

    // The shares of a day of 1440 alerts, half of them over, and their order.
    std::string letters;
    for (int i = 0; i < 1440; ++i)
        letters += i >= 720 ? 'c' : i % 10 == 7 ? 'm' : 'd';
    const auto row = joined(beads(letters), 25);
    EXPECT_EQ(row.size(), 25U);
    EXPECT_NEAR(double(std::ranges::count(row, Bead::missed)), 1.25, 1);
    EXPECT_NEAR(double(std::ranges::count(row, Bead::coming)), 12.5, 1);
    EXPECT_EQ(std::ranges::count(row.begin() + 14, row.end(), Bead::coming), 11);
}

TEST(PanelPlacement, StandsAtTheIconAndInsideTheScreen) {
    const QSize size(320, 400);
    const QRect bar(0, 28, 1280, 772);       // what a bar at the top leaves
    const QRect second(1280, 0, 1000, 600);  // a bar at the lower edge
    const struct {
        const char* what;
        QPoint icon;
        QRect available;
        QPoint corner;
    } cases[] = {{"under a bar", {640, 14}, bar, {480, 34}},
                 {"at the right end", {1270, 14}, bar, {954, 34}},
                 {"no bar", {640, 100}, {0, 0, 1280, 800}, {480, 116}},
                 {"above a bar", {1700, 615}, second, {1540, 194}},
                 {"left edge of another screen", {1285, 610}, second, {1286, 194}},
                 {"a bar at the side", {20, 300}, {40, 0, 1240, 800}, {46, 316}},
                 {"far out", {9000, 9000}, bar, {954, 394}},
                 {"a low screen", {100, 0}, {0, 0, 640, 300}, {6, 6}}};
    for (const auto& [what, icon, available, corner] : cases)
        EXPECT_EQ(panelFrame(icon, size, available), QRect(corner, size)) << what;
}

TEST(PanelCommands, FeedbackNamesProgramAndSystem) {
    const QUrl url = feedbackMessage();
    EXPECT_EQ(url.adjusted(QUrl::RemoveQuery).toString(), "mailto:support@tendel.app");
    const QString body =
        QUrlQuery(url.query(QUrl::FullyEncoded)).queryItemValue("body", QUrl::FullyDecoded);
    EXPECT_TRUE(body.startsWith("\n\n--\nTendel 0.")) << body.toStdString();
    EXPECT_TRUE(body.contains(QSysInfo::prettyProductName()));
}

// The panel of an application on a Monday at 9:30, and a window beside it.
struct Opened {
    Opened() {
        desk.save([&](Store::Writer& writer) {
            for (const auto* title : {"Water", "Stretch"}) {
                Reminder made;
                made.title = title;
                made.intervalMinutes = title == std::string("Water") ? 60 : 300;
                made.setStart({9, 0});
                writer.insert(made);
            }
        });
        desk.app.start();
        desk.workUntil("10:00:05");
        desk.app.alerts.actions().done();
        other.show();
        open();
    }
    void open() {
        panel.openAt({400, 2});
        settle();
    }
    PanelWindow* window() const {
        for (QWidget* each : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<PanelWindow*>(each)) return found;
        return nullptr;
    }
    void settle() {
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        desk.loop.runPending();
        QApplication::processEvents();
    }
    void key(Qt::Key key) {
        press(key);
        settle();
    }
    std::string card() {
        settle();
        return window()->findChild<NextReminderView*>()->accessibleName().toStdString();
    }
    // The control with the keyboard.
    static std::string current() {
        const QWidget* focus = QApplication::focusWidget();
        const auto* button = qobject_cast<const QAbstractButton*>(focus);
        if (!button) return focus ? "the panel" : "nothing";
        return (button->text().isEmpty() ? button->accessibleName() : button->text()).toStdString();
    }
    std::string walk(Qt::Key key, int times) {
        std::string way;
        for (; times > 0; --times) {
            this->key(key);
            way += current() + "; ";
        }
        return way;
    }

    WholeApplication desk;
    Panel panel{desk.app};
    QWidget other;
};

TEST(Panel, FollowsTheDayInOneSentence) {
    Opened opened;
    WholeApplication& desk = opened.desk;
    TendelApp& app = desk.app;
    EXPECT_EQ(opened.card(), "Water, in 1h 0m · 11:00. Today 1 of 8 done, 7 to come. 1-day streak");
    desk.workUntil("11:00:05");
    EXPECT_EQ(opened.card(), "Water, in 1h 0m · 12:00. Today 1 of 8 done, 7 to come. 1-day streak");
    app.alerts.actions().skip();
    EXPECT_EQ(opened.card(), "Water, in 1h 0m · 12:00. Today 1 of 8 done, 1 missed, 6 to come");
    desk.workUntil("11:30:00");
    EXPECT_TRUE(opened.card().starts_with("Water, in 30m"));
    app.scheduler.pause(desk.at("17:30:00"));
    EXPECT_EQ(opened.card(), "Paused until 17:30. Today 1 of 2 done, 1 missed");
    control<QAbstractButton>(*opened.window(), "Resume")->click();
    EXPECT_TRUE(opened.card().starts_with("Water, in 30m · 12:00. Today 1 of 8"));
    opened.desk.save([&](Store::Writer& writer) {
        for (const ReminderId id : {ReminderId{1}, ReminderId{2}})
            writer.remove(id);
    });
    EXPECT_EQ(opened.card(), "No upcoming reminders. Today 1 of 2 done, 1 missed");
}

TEST(Panel, IsReachedAndWorkedByKeys) {
    Opened opened;
    EXPECT_EQ(opened.current(), "the panel");
    EXPECT_EQ(opened.walk(Qt::Key_Down, 3), "Start Focus; Pause Reminders; Open Tendel; ");
    EXPECT_EQ(opened.walk(Qt::Key_Up, 4),
              "Pause Reminders; Start Focus; Quit Tendel; About Tendel; ");
    EXPECT_EQ(opened.walk(Qt::Key_Home, 1), "Start Focus; ");
    EXPECT_EQ(opened.walk(Qt::Key_Tab, 1), "Pause Reminders; ");

    // The four pauses open in place, by an arrow or Return.
    const int height = opened.window()->height();
    opened.key(Qt::Key_Right);
    EXPECT_EQ(opened.window()->height(), height + 4 * PanelRow::height);
    EXPECT_EQ(opened.walk(Qt::Key_Down, 2), "Pause for 30 Minutes; Pause for 1 Hour; ");
    EXPECT_EQ(opened.walk(Qt::Key_Left, 1), "Pause Reminders; ");
    EXPECT_EQ(opened.window()->height(), height);
    opened.key(Qt::Key_Return);
    EXPECT_EQ(opened.walk(Qt::Key_Down, 1), "Pause for 30 Minutes; ");
    opened.key(Qt::Key_Return);
    const auto until = opened.desk.app.scheduler.pausedUntil().get();
    EXPECT_EQ(until, opened.desk.loop.now() + 30min);
    EXPECT_EQ(opened.current(), "Resume Reminders");
    opened.key(Qt::Key_Return);
    EXPECT_FALSE(opened.desk.app.scheduler.pausedUntil().get());
    EXPECT_EQ(opened.current(), "Pause Reminders");

    EXPECT_EQ(opened.walk(Qt::Key_Down, 2), "Open Tendel; Open Stats; ");
    opened.key(Qt::Key_Return);
    EXPECT_EQ(opened.window(), nullptr);
    EXPECT_EQ(opened.desk.app.navigation.takeRequestedItem(), SidebarItem::stats);
}

TEST(Panel, SteersTheFocusTimerInEachPhase) {
    Opened opened;
    FocusTimer& timer = opened.desk.app.focus;
    const auto row = [&] {
        std::string names;
        for (const auto* button : opened.window()->findChildren<QAbstractButton*>())
            if (button->isVisible() && button->text().isEmpty())
                names += button->accessibleName().toStdString() + "; ";
        return names;
    };
    opened.walk(Qt::Key_Down, 1);
    opened.key(Qt::Key_Return);
    EXPECT_EQ(row(), "Pause; Skip to Break; Stop; ");
    EXPECT_EQ(opened.current(), "Pause");
    EXPECT_EQ(opened.walk(Qt::Key_Right, 3), "Skip to Break; Stop; Pause; ");
    EXPECT_EQ(opened.walk(Qt::Key_Down, 1), "Pause Reminders; ");
    EXPECT_EQ(opened.walk(Qt::Key_Up, 1), "Pause; ");
    opened.key(Qt::Key_Return);
    EXPECT_TRUE((*timer.session())->isPaused());
    EXPECT_EQ(row(), "Resume; Skip to Break; Stop; ");
    opened.key(Qt::Key_Return);
    opened.walk(Qt::Key_Right, 1);
    opened.key(Qt::Key_Return);
    EXPECT_EQ(row(), "Pause; Skip Break; Stop; ");
    opened.key(Qt::Key_Return);
    EXPECT_EQ(row(), "Start Focus; 5 more minutes of break; Stop; ");
    EXPECT_EQ(opened.current(), "Start Focus") << "not what took the place of Skip";
    opened.walk(Qt::Key_Right, 1);
    opened.key(Qt::Key_Return);
    EXPECT_EQ(row(), "Pause; Skip Break; Stop; ");
    opened.walk(Qt::Key_Right, 2);
    opened.key(Qt::Key_Return);
    EXPECT_FALSE(timer.session().get());
    EXPECT_EQ(opened.current(), "Start Focus");
}

TEST(Panel, ClosesAndIsGone) {
    Opened opened;
    const struct {
        const char* what;
        std::function<void()> close;
    } ways[] = {{"Escape", [&] { opened.key(Qt::Key_Escape); }},
                {"another window", [&] { opened.other.activateWindow(); }},
                {"the icon",
                 [&] {
                     opened.panel.toggleAt({400, 2});
                 }},
                {"from outside", [&] { opened.panel.close(); }}};
    for (const auto& [what, close] : ways) {
        SCOPED_TRACE(what);
        ASSERT_TRUE(opened.window());
        close();
        opened.settle();
        EXPECT_FALSE(opened.panel.isOpen());
        EXPECT_FALSE(opened.window());
        opened.open();
    }
    // A press on the icon that takes the keyboard away is not one that opens it again.
    opened.other.activateWindow();
    opened.settle();
    opened.panel.toggleAt({400, 2});
    EXPECT_FALSE(opened.panel.isOpen());
    opened.panel.toggleAt({400, 2});
    EXPECT_TRUE(opened.panel.isOpen());
    opened.other.activateWindow();
    opened.settle();
    opened.panel.toggleAt({900, 2});
    EXPECT_TRUE(opened.panel.isOpen()) << "another icon";
}

}  // namespace
}  // namespace tendel

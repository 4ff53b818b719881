#include "ui/stats/StatsPage.h"

#include <QAccessible>
#include <QFileDialog>
#include <QLabel>
#include <QMenu>
#include <QScrollBar>

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"
#include "ui/stats/HabitList.h"
#include "ui/stats/StatsChart.h"
#include "ui/stats/StatsGhost.h"
#include "ui/stats/StatsTiles.h"
#include "ui/theme/SlimScrollArea.h"
#include "ui/window/QtEnvironment.h"

namespace tendel {
namespace {

using namespace test;
using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;

// The window on its Stats section, on Monday, 2 March at 10:12.
struct OpenStats {
    OpenStats() {
        desk.app.settings.statsRange.set(StatsRange::today);
        for (const auto* title : {"Stretch", "Drink"}) {
            Reminder reminder;
            reminder.title = title;
            if (title == std::string_view("Drink")) reminder.setKind(ReminderKind::private_);
            reminders.push_back(reminder);
            reminders.back().id = desk.store.add(reminder);
        }
    }

    void record(std::size_t which, Duration ago, Outcome outcome) {
        const Instant due = desk.loop.now() - ago;
        static_cast<void>(desk.store.save([&](Store::Writer& writer) {
            writer.insert(ReminderEvent(reminders[which], due, outcome, due));
        }));
    }
    void open() {
        window.emplace(desk);
        press(Qt::Key_4, Qt::ControlModifier);
        QApplication::processEvents();
    }
    template <class View>
    View& view() {
        return *page().findChild<View*>();
    }
    StatsPage& page() { return *(*window)->findChild<StatsPage*>(); }
    // What assistive programs hear of a view's elements that say something.
    template <class View>
    std::string spoken() {
        auto* all = QAccessible::queryAccessibleInterface(&view<View>());
        std::string text;
        for (int i = 0; i < all->childCount(); ++i) {
            const QString name = all->child(i)->text(QAccessible::Name);
            if (!name.endsWith("nothing counted")) text += name.toStdString() + "\n";
        }
        return text;
    }
    bool shows(std::string_view text) {
        for (const QLabel* label : page().findChildren<QLabel*>())
            if (label->isVisible() && label->text().contains(toQString(text))) return true;
        return false;
    }

    Desk desk{"en_GB"};
    std::vector<Reminder> reminders;
    std::optional<OpenWindow> window;
};

TEST(StatsPage, ShowsWhatWillAppearThenWhatWasCounted) {
    OpenStats stats;
    stats.open();
    EXPECT_TRUE(stats.view<StatsGhost>().isVisible());
    EXPECT_FALSE(stats.view<StatsTiles>().isVisible());

    stats.record(0, days(40), Outcome::done);
    QApplication::processEvents();
    EXPECT_FALSE(stats.view<StatsGhost>().isVisible());
    EXPECT_TRUE(stats.view<StatsTiles>().isVisible());
    EXPECT_FALSE(stats.view<StatsChart>().isVisible());
    EXPECT_TRUE(stats.shows("Nothing to count yet today"));

    stats.record(0, minutes(30), Outcome::done);
    stats.record(0, minutes(20), Outcome::expired);
    stats.record(1, minutes(10), Outcome::snoozed);
    QApplication::processEvents();
    EXPECT_EQ(stats.spoken<StatsChart>(),
              "09:00–10:00: 1 done, 1 missed\n10:00–11:00: 1 snoozed\n");
    EXPECT_EQ(stats.spoken<HabitList>(), "Stretch: 50% done, 1 done, 1 missed\nDrink: 1 snoozed\n");
    EXPECT_TRUE(stats.spoken<StatsTiles>().starts_with("1 of 2 done, 50%. "));
}

TEST(StatsPage, FollowsRangeFilterAndDay) {
    OpenStats stats;
    stats.record(0, minutes(30), Outcome::done);
    stats.record(1, days(1), Outcome::skipped);
    stats.open();
    EXPECT_EQ(stats.spoken<StatsChart>(), "09:00–10:00: 1 done\n");

    // By the keyboard alone: Week, then Private, then the tiles.
    stats.page().firstFocus()->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Right);
    EXPECT_EQ(stats.desk.app.settings.statsRange.get(), StatsRange::week);
    EXPECT_EQ(stats.spoken<StatsChart>(), "Sunday, 1 March: 1 missed\nMonday, 2 March: 1 done\n");
    press(Qt::Key_Tab);
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(stats.desk.app.settings.statsFilter.get(), StatsFilter::private_);
    EXPECT_EQ(stats.spoken<StatsChart>(), "Sunday, 1 March: 1 missed\n");
    stats.desk.app.settings.statsFilter.set(StatsFilter::all);

    stats.desk.loop.advance(hours(24));
    QApplication::processEvents();
    EXPECT_TRUE(stats.view<StatsChart>().marks().back().sentence.startsWith("Tuesday, 3 March: "));
}

TEST(StatsPage, IsReachedWhollyByTheTabKeyInTheOrderSeen) {
    OpenStats stats;
    stats.record(0, minutes(30), Outcome::done);
    stats.open();
    for (const int width : {1100, 720}) {
        (*stats.window)->resize(width, 640);
        QApplication::processEvents();
        control(**stats.window, "Stats")->setFocus(Qt::TabFocusReason);  // in the sidebar
        press(Qt::Key_Tab);
        std::string stops;
        for (int i = 0; i < 7; ++i) {
            const QWidget* at = QApplication::focusWidget();
            const auto* button = qobject_cast<const QAbstractButton*>(at);
            const bool hasText = button && !button->text().isEmpty();
            stops += (hasText ? button->text() : at->accessibleName()).toStdString() + "|";
            press(Qt::Key_Tab);
        }
        EXPECT_EQ(stops, width > 720 ? "Today|All|Export and import|What's your one goal for "
                                       "today?|Figures|Chart|Habits|"
                                     : "Export and import|Today|All|What's your one goal for "
                                       "today?|Figures|Chart|Habits|");
    }
}

TEST(StatsPage, KeepsKeyboardAndScrollPositionThroughASave) {
    OpenStats stats;
    for (int i = 0; i < 40; ++i) {
        Reminder reminder;
        reminder.title = "Habit " + std::to_string(i);
        stats.reminders.push_back(reminder);
        stats.reminders.back().id = stats.desk.store.add(reminder);
        stats.record(stats.reminders.size() - 1, minutes(30), Outcome::done);
    }
    stats.open();
    auto* bar = stats.page().findChild<SlimScrollArea*>()->verticalScrollBar();
    auto& habits = stats.view<HabitList>();
    habits.setFocus(Qt::TabFocusReason);
    for (int i = 0; i < 20; ++i)
        press(Qt::Key_Down);
    const int scrolled = bar->value();
    const QRect row = habits.marks()[20].area.toRect();
    EXPECT_TRUE(habits.visibleRegion().contains(row));  // the keyboard brought it into sight
    EXPECT_GT(scrolled, 0);

    int counts = 0;
    QObject::connect(&stats.view<StatsTiles>(), &MarkedView::currentChanged, [&] { ++counts; });
    for (int i = 0; i < 3; ++i)
        stats.record(5, minutes(10), Outcome::done);
    QApplication::processEvents();
    EXPECT_EQ(counts, 1);  // three saves of one turn
    EXPECT_EQ(bar->value(), scrolled);
    EXPECT_EQ(habits.current(), 20);

    press(Qt::Key_1, Qt::ControlModifier);
    stats.record(5, minutes(5), Outcome::done);
    QApplication::processEvents();
    EXPECT_EQ(counts, 1);  // nobody sees it
    press(Qt::Key_4, Qt::ControlModifier);
    EXPECT_GT(counts, 1);
}

TEST(StatsPage, KeepsTheGoalUntilTodayHasOne) {
    OpenStats stats;
    auto& goal = stats.desk.app.settings.dailyGoal;
    stats.open();
    const auto click = [&](std::string_view name) {
        auto* button = control<QAbstractButton>(stats.page(), name);
        ASSERT_TRUE(button) << name;
        button->click();
        QApplication::processEvents();
    };
    control(stats.page(), "What's your one goal for today?")->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Return);
    EXPECT_FALSE(goal.get());  // nothing is no goal
    type("  Finish the draft ");
    press(Qt::Key_Return);
    ASSERT_TRUE(goal.get());
    EXPECT_EQ(goal.get()->text, "Finish the draft");
    EXPECT_TRUE(stats.shows("Today's goal"));
    EXPECT_FALSE(control(stats.page(), "Set today's goal"));
    press(Qt::Key_Space);  // the keyboard is where it goes on
    EXPECT_TRUE(goal.get()->isDone);

    click("Edit today's goal");
    type("Finish the book");
    press(Qt::Key_Escape);
    EXPECT_EQ(goal.get()->text, "Finish the draft");
    click("Edit today's goal");
    type("Finish the chapter");
    click("Set today's goal");
    EXPECT_EQ(goal.get()->text, "Finish the chapter");
    EXPECT_TRUE(goal.get()->isDone);
    click("Mark the goal as not done");
    EXPECT_FALSE(goal.get()->isDone);

    for (const auto& [pass, caption] : {std::pair(days(1), "Yesterday's goal"),
                                        {days(2), "Monday's goal"},
                                        {days(7), "Goal of 2 March"}}) {
        stats.desk.loop.setWallClock(stats.desk.loop.now() + pass);
        stats.desk.loop.advance(minutes(1));
        QApplication::processEvents();
        EXPECT_TRUE(stats.shows(caption)) << caption;
        EXPECT_TRUE(stats.shows("Finish the chapter"));
        EXPECT_FALSE(control(stats.page(), "Edit today's goal"));
    }
    control(stats.page(), "What's your one goal for today?")->setFocus(Qt::TabFocusReason);
    type("Rest");
    click("Set today's goal");
    EXPECT_EQ(goal.get()->text, "Rest");
    click("Edit today's goal");
    click("Remove today's goal");
    EXPECT_FALSE(goal.get());
}

TEST(StatsPage, ExportsAndImportsWithoutDoubles) {
    OpenStats stats;
    stats.record(0, minutes(30), Outcome::done);
    stats.open();
    const TemporaryFolder folder;
    const auto choose = [&](const char* action, const QString& file) {
        control<QAbstractButton>(stats.page(), "Export and import")->click();
        auto* menu = stats.page().findChild<QMenu*>();
        ASSERT_TRUE(menu);
        for (QAction* each : menu->actions())
            if (each->text() == QString::fromUtf8(action)) each->trigger();
        menu->close();
        auto* dialog = stats.page().findChild<QFileDialog*>();
        ASSERT_TRUE(dialog) << action;
        if (dialog->acceptMode() == QFileDialog::AcceptSave) {
            EXPECT_EQ(QFileInfo(dialog->selectedFiles().value(0)).completeBaseName().toStdString(),
                      "Tendel 2026-03-02");
        }
        Q_EMIT dialog->fileSelected(file);
        dialog->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    for (const char* kind : {"CSV", "JSON"}) {
        const QString file = QString::fromStdString(folder.path / (std::string("kept.") + kind));
        choose((std::string("Export as ") + kind + "…").c_str(), file);
        EXPECT_TRUE(stats.shows("Exported to " + file.toStdString())) << kind;
        choose("Import…", file);
        EXPECT_TRUE(stats.shows("Nothing new in")) << kind;
    }
    EXPECT_EQ(stats.desk.store.events().size(), 1u);
    choose("Import…", QString::fromStdString(folder.path / "gone.csv"));
    EXPECT_TRUE(stats.shows("gone.csv"));
}

}  // namespace
}  // namespace tendel

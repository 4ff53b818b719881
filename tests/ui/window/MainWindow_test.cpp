#include "ui/window/MainWindow.h"

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QStackedWidget>

#include <gtest/gtest.h>

#include <array>
#include <set>

#include "QtEnvironment.h"
#include "ui/theme/Theme.h"
#include "ui/window/NoticeWindow.h"
#include "ui/window/ReminderCard.h"
#include "ui/window/Sheet.h"
#include "ui/window/StatusLine.h"

namespace tendel {
namespace {

using namespace test;
using std::chrono::minutes;

Reminder titled(std::string title, ReminderKind kind = ReminderKind::work) {
    Reminder reminder;
    reminder.title = std::move(title);
    reminder.setKind(kind);
    return reminder;
}

std::string focusedTitle() {
    const auto* card = qobject_cast<ReminderCard*>(QApplication::focusWidget());
    return card ? card->reminder().title : "";
}

std::vector<std::string> titles(const MemoryStore& store) {
    std::vector<std::string> all;
    for (const Reminder& reminder : store.reminders())
        all.push_back(reminder.title);
    return all;
}

using Titles = std::vector<std::string>;

bool shows(const QWidget& root, std::string_view text) {
    for (const QLabel* label : root.findChildren<QLabel*>())
        if (label->isVisible() && label->text().contains(toQString(text))) return true;
    return false;
}

TEST(MainWindow, CreatesEditsAndDuplicatesByKeyboardAlone) {
    Desk desk;
    OpenWindow window(desk);
    press(Qt::Key_N, Qt::ControlModifier);
    type("Drink");
    press(Qt::Key_Tab);
    press(Qt::Key_Tab);
    press(Qt::Key_Return);  // on a choice, too, it saves
    ASSERT_EQ(titles(desk.store), Titles({"Drink"}));
    EXPECT_EQ(desk.store.reminders()[0].createdAt, desk.loop.now());
    EXPECT_TRUE(desk.store.reminders()[0].isOn);
    EXPECT_EQ(focusedTitle(), "Drink");

    press(Qt::Key_Return);
    press(Qt::Key_End);
    type(" tea");
    press(Qt::Key_Return, Qt::ControlModifier);
    ASSERT_EQ(titles(desk.store), Titles({"Drink tea"}));

    desk.loop.advance(minutes(1));
    press(Qt::Key_D, Qt::ControlModifier);
    ASSERT_EQ(titles(desk.store), Titles({"Drink tea", "Drink tea"}));
    EXPECT_EQ(desk.store.reminders()[1].createdAt, desk.loop.now());
    const auto* card = qobject_cast<ReminderCard*>(QApplication::focusWidget());
    ASSERT_TRUE(card);
    EXPECT_EQ(card->reminder().id, desk.store.reminders()[1].id);
}

TEST(MainWindow, SwitchesAndWalksTheListByKeyboardAlone) {
    Desk desk;
    for (const auto* title : {"one", "two", "three"})
        desk.store.add(titled(title));
    OpenWindow window(desk);
    const auto cards = window->findChildren<ReminderCard*>();
    cards[0]->setFocus(Qt::TabFocusReason);
    press(Qt::Key_Down);
    press(Qt::Key_Space);
    EXPECT_FALSE(desk.store.reminders()[1].isOn);
    EXPECT_EQ(focusedTitle(), "two");
    press(Qt::Key_Space);
    EXPECT_TRUE(desk.store.reminders()[1].isOn);

    std::string walk;
    for (const auto key : {Qt::Key_Down, Qt::Key_Down, Qt::Key_Home, Qt::Key_Up, Qt::Key_End}) {
        press(key);
        walk += focusedTitle() + " ";
    }
    EXPECT_EQ(walk, "three three one one three ");

    // The Tab key reaches the buttons of a card in their order before it goes on.
    cards[0]->setFocus(Qt::TabFocusReason);
    std::string stops;
    for (int i = 0; i < 5; ++i) {
        press(Qt::Key_Tab);
        stops += QApplication::focusWidget()->accessibleName().toStdString() + "|";
    }
    EXPECT_TRUE(stops.starts_with("Edit one|Duplicate one|Delete one|one on|two")) << stops;
}

TEST(MainWindow, AsksBeforeItDeletesAndGoesToTheNeighbour) {
    Desk desk;
    for (const auto* title : {"one", "two"})
        desk.store.add(titled(title));
    OpenWindow window(desk);
    window->findChildren<ReminderCard*>()[0]->setFocus(Qt::TabFocusReason);

    for (const auto leave : {Qt::Key_Escape, Qt::Key_Return}) {
        press(Qt::Key_Delete);
        EXPECT_TRUE(shows(*window, "Its history stays in Stats."));
        press(leave);
        EXPECT_EQ(titles(desk.store), Titles({"one", "two"}));
        EXPECT_EQ(focusedTitle(), "one");
    }
    const auto deleteFocused = [] {
        press(Qt::Key_Delete);
        press(Qt::Key_Tab);
        press(Qt::Key_Return);
    };
    deleteFocused();
    EXPECT_EQ(titles(desk.store), Titles({"two"}));
    EXPECT_EQ(focusedTitle(), "two");
    deleteFocused();
    EXPECT_EQ(titles(desk.store), Titles({}));
    EXPECT_EQ(QApplication::focusWidget(), control<QAbstractButton>(*window, "New Reminder"));
}

TEST(MainWindow, SaysWhenTheStoreRefusesAndShowsWhatIsStored) {
    Desk desk;
    desk.store.add(titled("one"));
    OpenWindow window(desk);
    auto* onOff = control<QAbstractButton>(*window, "one on");
    desk.store.refusal = "The disk is full.";
    onOff->click();
    EXPECT_TRUE(shows(*window, "The disk is full."));
    EXPECT_TRUE(onOff->isChecked());
    desk.store.refusal.reset();
    onOff->click();
    EXPECT_FALSE(shows(*window, "The disk is full."));
    EXPECT_FALSE(desk.store.reminders()[0].isOn);
    EXPECT_TRUE(shows(*window, "All reminders are off"));
}

TEST(MainWindow, KeepsCardsAndFocusWhileStoreClockAndHoursChange) {
    Desk desk;
    desk.store.add(titled("one"));
    desk.store.add(titled("two"));
    OpenWindow window(desk);
    const auto before = window->findChildren<ReminderCard*>();
    before[1]->setFocus(Qt::TabFocusReason);
    EXPECT_TRUE(before[1]->accessibleName().contains("11:00"));

    desk.loop.advance(minutes(60));
    EXPECT_TRUE(before[1]->accessibleName().contains("12:00"));
    auto hours = desk.app.settings.workingHours.get();
    hours.workdays.clear();
    desk.app.settings.workingHours.set(hours);
    EXPECT_TRUE(before[1]->accessibleName().contains("Never fires"));
    desk.store.add(titled("three"));
    EXPECT_EQ(window->findChildren<ReminderCard*>().first(2), before);
    EXPECT_EQ(QApplication::focusWidget(), before[1]);
}

TEST(MainWindow, ShowsEachKindInItsSectionAndFollowsAMove) {
    Desk desk;
    desk.store.add(titled("mine", ReminderKind::private_));
    desk.app.navigation.request(SidebarItem::privateReminders);
    OpenWindow window(desk);
    EXPECT_TRUE(control<ReminderCard>(*window, "mine, 5:00\u202fPM · work ends at 5:00\u202fPM") ||
                shows(*window, "1 reminder"));
    window->editReminder(desk.store.reminders()[0].id);
    control<QAbstractButton>(*window, "Work")->click();
    press(Qt::Key_Return, Qt::ControlModifier);
    EXPECT_EQ(desk.store.reminders()[0].kind(), ReminderKind::work);
    EXPECT_EQ(focusedTitle(), "mine");
    EXPECT_TRUE(shows(*window, "Work Reminders"));
}

TEST(MainWindow, LosesNothingThatWasWritten) {
    struct Case {
        bool closesWindow;
        const char* answer;
        bool isStored, isWindowLeft, isEditorLeft;
    };
    for (const Case& each :
         {Case{false, "Keep Editing", false, true, true},
          Case{false, "Discard", false, true, false}, Case{false, "Save", true, true, false},
          Case{true, "Keep Editing", false, true, true}, Case{true, "Discard", false, false, false},
          Case{true, "Save", true, false, false}}) {
        SCOPED_TRACE(each.answer);
        Desk desk;
        OpenWindow window(desk);
        window->createReminder();
        type("Stretch");
        if (each.closesWindow)
            window->close();
        else
            press(Qt::Key_Escape);
        ASSERT_TRUE(window->isVisible());
        const auto sheets = window->findChildren<Sheet*>();
        ASSERT_EQ(sheets.size(), 2);
        control<QAbstractButton>(*sheets[1], each.answer)->click();
        EXPECT_EQ(!desk.store.reminders().empty(), each.isStored);
        EXPECT_EQ(window.window && window->isVisible(), each.isWindowLeft);
        if (!window.window) continue;
        EXPECT_EQ(control<QLineEdit>(*window, "Title") != nullptr, each.isEditorLeft);
    }
}

TEST(MainWindow, LeavesAnUntouchedEditorWithoutAsking) {
    Desk desk;
    OpenWindow window(desk);
    window->createReminder();
    press(Qt::Key_Escape);
    EXPECT_FALSE(control<QLineEdit>(*window, "Title"));
    window->createReminder();
    EXPECT_TRUE(window->close());
}

TEST(MainWindow, KeepsTheKeyboardInsideASheet) {
    Desk desk;
    desk.store.add(titled("one"));
    OpenWindow window(desk);
    window->editReminder(desk.store.reminders()[0].id);
    auto* sheet = window->findChild<Sheet*>();
    std::set<QWidget*> stops;
    for (int i = 0; i < 40; ++i) {
        press(i < 20 ? Qt::Key_Tab : Qt::Key_Backtab);
        ASSERT_TRUE(sheet->isAncestorOf(QApplication::focusWidget()));
        stops.insert(QApplication::focusWidget());
    }
    EXPECT_GE(stops.size(), 12U);
    press(Qt::Key_N, Qt::ControlModifier);
    EXPECT_EQ(window->findChildren<Sheet*>().size(), 1);
}

TEST(MainWindow, FollowsTheSchemeWhileItIsOpen) {
    Desk desk;
    desk.store.add(titled("one"));
    OpenWindow open(desk);
    Theme::instance().setDark(true);
    QApplication::processEvents();
    const QImage followed = open->grab().toImage();
    {
        OpenWindow fresh(desk);
        EXPECT_EQ(followed, fresh->grab().toImage());
    }
    Theme::instance().setDark(false);
    EXPECT_NE(followed, open->grab().toImage());
}

TEST(MainWindow, SaysInItsFootWhatHoldsRemindersBack) {
    Desk desk;
    desk.calendar = Calendar("Europe/Berlin", "de_DE");
    for (const auto* title : {"one", "two"})
        desk.store.add(titled(title));
    OpenWindow window(desk);
    const QWidget* foot = window->findChild<StatusLine*>();
    const auto* pages = window->findChild<QStackedWidget*>();
    const QSize wholePage = pages->size();
    const auto keep = [&](std::size_t i) {
        desk.app.scheduler.keep(std::array{Upcoming::Item::of(desk.store.reminders()[i])},
                                KeptReason::call, desk.loop.now());
    };
    const auto present = [&](Presence presence) { window.presence.set(presence); };
    const auto pause = [&](Duration length) { desk.app.scheduler.pause(desk.loop.now() + length); };
    const std::pair<std::function<void()>, const char*> steps[] = {
        {[] {}, ""},
        {[&] { present(Presence::busyPresentation); }, "Presenting"},
        {[&] { present(Presence::busyCall); }, "In a call"},
        {[&] { keep(0); }, "In a call · 1 reminder waits"},
        {[&] { keep(1); }, "In a call · 2 reminders wait"},
        {[&] { present(Presence::away); }, "Away · 2 reminders wait"},
        {[&] { pause(minutes(30)); }, "Paused until 10:42"},
        {[&] { pause(std::chrono::hours(23)); }, "Paused until Di 09:12"},
        {[&] {
             desk.calendar.setZone("Asia/Tokyo");
             desk.loop.advance(minutes(1));
         },
         "Paused until Di 17:12"},
        {[&] { desk.app.scheduler.resume(); }, "Away"},
        {[&] { desk.app.focus.start(); }, "Away"},
        {[&] { present(Presence::present); },
         "Focusing · round 1 · 30 min left · then a 5 min break"},
        {[&] { keep(0); },
         "Focusing · round 1 · 30 min left · then a 5 min break · 1 reminder waits"},
        {[&] { desk.app.focus.stop(); }, ""},
    };
    for (const auto& [step, text] : steps) {
        step();
        QApplication::processEvents();
        EXPECT_EQ(foot->isVisible(), *text != 0) << text;
        EXPECT_EQ(foot->accessibleName().toStdString(), text);
        EXPECT_EQ(pages->size() == wholePage, *text == 0) << text;
    }
}

// Everything that takes the keyboard or the pointer, by the tree that assistive programs read.
void collectNameless(QAccessibleInterface* at, int& controls, QStringList& nameless) {
    if (!at || at->state().invisible) return;
    const auto role = at->role();
    const bool isControl = at->state().focusable || role == QAccessible::Button ||
                           role == QAccessible::CheckBox || role == QAccessible::RadioButton ||
                           role == QAccessible::EditableText;
    if (isControl) {
        ++controls;
        if (at->text(QAccessible::Name).trimmed().isEmpty())
            nameless << at->object()->metaObject()->className();
    }
    for (int i = 0; i < at->childCount(); ++i)
        collectNameless(at->child(i), controls, nameless);
}

TEST(MainWindow, NamesEveryControl) {
    Desk desk;
    desk.store.add(titled("one"));
    OpenWindow window(desk);
    window->findChild<ReminderCard*>()->setFocus(Qt::TabFocusReason);
    const auto check = [](QWidget* root, int least) {
        int controls = 0;
        QStringList nameless;
        collectNameless(QAccessible::queryAccessibleInterface(root), controls, nameless);
        EXPECT_GE(controls, least);
        EXPECT_TRUE(nameless.isEmpty()) << nameless.join(' ').toStdString();
    };
    check(&*window, 8);
    window->showSection(SidebarItem::focus);
    check(&*window, 30);
    window->showSection(SidebarItem::workReminders);
    window->editReminder(desk.store.reminders()[0].id);
    check(&*window, 60);
    press(Qt::Key_Escape);
    press(Qt::Key_Delete);
    check(window->findChildren<Sheet*>().last(), 2);
    const std::unique_ptr<NoticeWindow> notice(makeResetNotice("/tmp/Damaged Store"));
    notice->present();
    check(notice.get(), 2);
}

}  // namespace
}  // namespace tendel

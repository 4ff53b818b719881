#include "ui/window/ReminderEditor.h"

#include <QLabel>
#include <QLineEdit>

#include <gtest/gtest.h>

#include "QtEnvironment.h"
#include "ui/theme/Theme.h"
#include "ui/window/LengthField.h"
#include "ui/window/ReminderWords.h"
#include "ui/window/TimeField.h"

namespace tendel {
namespace {

using namespace test;

// A form on its own.
struct Form {
    explicit Form(const Reminder& reminder = {}) : editor(desk.app, reminder) {
        editor.resize(460, 800);
        editor.show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&editor));
    }

    void write(std::string_view field, const char* text) {
        auto* at = control<QLineEdit>(editor, field);
        at->setFocus();
        at->selectAll();
        QTest::keyClicks(at, text);
    }
    void click(std::string_view name) { control<QAbstractButton>(editor, name)->click(); }
    // In a grid whose cells share names with another's.
    void choose(std::string_view grid, std::string_view name) {
        control<QAbstractButton>(*control(editor, grid), name)->click();
    }
    std::string sentence() const {
        return control<QLabel>(editor, "What happens")->text().toStdString();
    }

    Desk desk;
    ReminderEditor editor;
};

TEST(ReminderEditor, StoresEveryField) {
    Form form;
    form.write("Title", " Water the plants ");
    form.write("Details", "All of them");
    form.click("Private");
    form.write("Start time", "1745");
    form.write("Interval", "2");
    form.choose("Interval unit", "hours");
    form.click("Timed break");
    form.write("Break length", "3");
    form.choose("Break length unit", "minutes");
    form.click("Stepping away counts as done");
    form.choose("Symbol", "Leaf");
    form.choose("Figure", "Walking");
    ASSERT_TRUE(form.editor.save());

    Reminder expected;
    expected.id = form.desk.store.reminders()[0].id;
    expected.kindRaw = "private";
    expected.title = "Water the plants";
    expected.details = "All of them";
    expected.startHour = 17;
    expected.startMinute = 45;
    expected.intervalMinutes = 120;
    expected.durationSeconds = 180;
    expected.skipsWhenAwayChoice = false;  // on by default with a timed break
    expected.symbolName = "leaf";
    expected.animationChoice = "walking";
    expected.createdAt = form.desk.loop.now();
    EXPECT_EQ(form.desk.store.reminders()[0], expected);

    form.click("Timed break");
    form.click("Stepping away counts as done: automatic");
    form.choose("Symbol", "Automatic");
    form.choose("Figure", "None");
    ASSERT_TRUE(form.editor.save());
    expected.durationSeconds.reset();
    expected.skipsWhenAwayChoice.reset();
    expected.symbolName.reset();
    expected.animationChoice = "none";
    EXPECT_EQ(form.desk.store.reminders()[0], expected);
}

TEST(ReminderEditor, FollowsTheDefaultOfSteppingAwayUntilThePersonChooses) {
    Form form;
    const auto* away = control<QAbstractButton>(form.editor, "Stepping away counts as done");
    EXPECT_FALSE(away->isChecked());
    form.click("Timed break");
    EXPECT_TRUE(away->isChecked());
    EXPECT_FALSE(form.editor.draft().skipsWhenAwayChoice);
    form.click("Timed break");
    EXPECT_FALSE(away->isChecked());
    form.click("Stepping away counts as done");
    form.click("Timed break");
    form.click("Timed break");
    EXPECT_EQ(form.editor.draft().skipsWhenAwayChoice, true);
    EXPECT_TRUE(away->isChecked());
}

TEST(ReminderEditor, LeavesOddStoredValuesAloneUnlessTheyAreEdited) {
    Reminder odd;
    odd.id = {1};
    odd.kindRaw = "Work";
    odd.title = "odd";
    odd.details = detailsPlaceholder;
    odd.startHour = 25;
    odd.startMinute = 77;
    odd.intervalMinutes = 0;
    odd.durationSeconds = 100'000;
    odd.isBreakSuggestion = false;
    odd.symbolName = "no.such.symbol";
    odd.animationChoice = "no such figure";
    odd.isOn = false;
    Form form(odd);
    form.desk.store.add(odd);
    EXPECT_FALSE(form.editor.hasChanges());
    EXPECT_EQ(control<QLineEdit>(form.editor, "Details")->text(), "");
    form.write("Title", "even");
    // Visiting a field is not editing it.
    control<QLineEdit>(form.editor, "Interval")->setFocus();
    control<QLineEdit>(form.editor, "Title")->setFocus();
    ASSERT_TRUE(form.editor.save());
    odd.title = "even";
    EXPECT_EQ(form.desk.store.reminders()[0], odd);
}

TEST(ReminderEditor, RefusesWhatIsOutOfRange) {
    struct Case {
        const char* field;
        const char* text;
        bool isTaken;
    };
    for (const Case& each :
         {Case{"Interval", "0", false}, Case{"Interval", "1", true}, Case{"Interval", "1440", true},
          Case{"Interval", "1441", false}, Case{"Interval", "ten", false},
          Case{"Break length", "4", false}, Case{"Break length", "5", true},
          Case{"Break length", "3600", true}, Case{"Break length", "3601", false},
          Case{"Start time", "24:00", false}, Case{"Start time", "23:59", true}}) {
        SCOPED_TRACE(std::string(each.field) + " " + each.text);
        Reminder reminder;
        reminder.durationSeconds = 45;
        Form form(reminder);
        form.write(each.field, each.text);
        EXPECT_TRUE(form.editor.hasChanges());
        control<QAbstractButton>(form.editor, "Save")->setFocus();
        EXPECT_EQ(form.editor.save(), each.isTaken);
        EXPECT_EQ(form.desk.store.reminders().size(), each.isTaken ? 1U : 0U);
        if (!each.isTaken) {
            EXPECT_EQ(QApplication::focusWidget()->accessibleName(), toQString(each.field));
        }
    }
}

TEST(ReminderEditor, SaysWhatWillHappen) {
    struct Case {
        const char* start;
        const char* interval;
        const char* kind;
        const char* sentence;
    };
    for (const Case& each :
         {Case{"9:00", "45", "Work", "Every 45 minutes from 09:00, next today at 10:30"},
          Case{"9:00", "60", "Private", "Every hour from 09:00, next today at 17:00"},
          Case{"8:00", "1440", "Work", "Never fires outside working hours"},
          Case{"10:00", "1440", "Work", "Once a day at 10:00, next tomorrow at 10:00"},
          Case{"12:00", "1440", "Private", "Once a day at 12:00, next Saturday at 12:00"},
          Case{"12:00", "", "Work", "An interval is 1 minute to 24 hours long."},
          Case{"25", "60", "Work", "Write the start time like 9:30."}}) {
        Form form;
        form.desk.calendar = Calendar("Europe/Berlin", "en_GB");
        form.click(each.kind);
        form.write("Start time", each.start);
        form.write("Interval", each.interval);
        if (!*each.interval)
            QTest::keyClick(control<QLineEdit>(form.editor, "Interval"), Qt::Key_Backspace);
        EXPECT_EQ(form.sentence(), each.sentence);
    }
    Form weekdaysOnly;
    auto hours = weekdaysOnly.desk.app.settings.workingHours.get();
    hours.workdays = {1, 2, 3, 4, 5, 6, 7};
    weekdaysOnly.desk.app.settings.workingHours.set(hours);
    weekdaysOnly.click("Private");
    weekdaysOnly.write("Interval", "1440");
    EXPECT_EQ(weekdaysOnly.sentence(), "Never fires on workdays");
}

TEST(ReminderEditor, StaysOpenWithTheReasonWhenSavingFails) {
    Form form;
    int saved = 0;
    QObject::connect(&form.editor, &ReminderEditor::saved, [&] { ++saved; });
    form.write("Title", "Stretch");
    form.desk.store.refusal = "The disk is full.";
    form.click("Save");
    EXPECT_EQ(saved, 0);
    EXPECT_EQ(form.sentence(), "Not saved. The disk is full.");
    form.desk.store.refusal.reset();
    form.click("Save");
    EXPECT_EQ(saved, 1);
    EXPECT_EQ(form.desk.store.reminders().size(), 1U);
}

TEST(ReminderEditor, KeepsWhatHappenedToTheReminderMeanwhile) {
    Reminder reminder;
    reminder.id = {1};
    reminder.title = "one";
    Form form(reminder);
    form.desk.store.add(reminder);
    form.write("Title", "two");

    Reminder off = form.desk.store.reminders()[0];
    off.isOn = false;
    static_cast<void>(form.desk.store.save([&](Store::Writer& writer) { writer.update(off); }));
    ASSERT_TRUE(form.editor.save());
    EXPECT_FALSE(form.desk.store.reminders()[0].isOn);

    static_cast<void>(form.desk.store.save([](Store::Writer& writer) { writer.remove({1}); }));
    EXPECT_EQ(form.sentence(), "This reminder was deleted meanwhile. Saving makes it anew.");
    ASSERT_TRUE(form.editor.save());
    ASSERT_EQ(form.desk.store.reminders().size(), 1U);
    EXPECT_EQ(form.desk.store.reminders()[0].title, "two");
    EXPECT_NE(form.desk.store.reminders()[0].id, ReminderId{1});
}

TEST(LengthField, ReadsAndChangesUnitsAsAPersonMeansThem) {
    struct Case {
        int shown;
        const char* number;
        int unit;
        const char* typed;  // null: nothing
        int chosenUnit;
        std::optional<int> value;
    };
    for (const Case& each :
         {Case{60, "60", 0, nullptr, 0, 60}, Case{120, "2", 1, nullptr, 1, 120},
          Case{90, "90", 0, nullptr, 1, 120}, Case{90, "90", 0, "2", 1, 120},
          Case{1440, "24", 1, nullptr, 0, 24}, Case{0, "0", 0, nullptr, 0, {}}}) {
        SCOPED_TRACE(each.shown);
        LengthField field("Interval", {{"minutes", 1}, {"hours", 60}}, {1, 1440});
        field.setValue(each.shown);
        field.show();
        auto* number = field.findChild<QLineEdit*>();
        EXPECT_EQ(number->text(), each.number);
        if (each.typed) {
            number->selectAll();
            QTest::keyClicks(number, each.typed);
        }
        if (each.chosenUnit != each.unit)
            control<QAbstractButton>(field, each.chosenUnit ? "hours" : "minutes")->click();
        EXPECT_EQ(field.value(), each.value);
    }
}

TEST(TimeField, ReadsTimesAsPeopleWriteThem) {
    const std::pair<const char*, std::optional<TimeOfDay>> cases[] = {
        {"9", TimeOfDay{9, 0}},
        {"930", TimeOfDay{9, 30}},
        {"0930", TimeOfDay{9, 30}},
        {"21h30", TimeOfDay{21, 30}},
        {"21 h", TimeOfDay{21, 0}},
        {"9.05", TimeOfDay{9, 5}},
        {" 9:30 PM", TimeOfDay{21, 30}},
        {"12 am", TimeOfDay{0, 0}},
        {"12:15 p.m.", TimeOfDay{12, 15}},
        {"9:30\u202fPM", TimeOfDay{21, 30}},
        {"0:00", TimeOfDay{0, 0}},
        {"24:00", std::nullopt},
        {"9:60", std::nullopt},
        {"13 pm", std::nullopt},
        {"", std::nullopt},
        {"noon", std::nullopt},
    };
    for (const auto& [text, time] : cases)
        EXPECT_EQ(parseTimeOfDay(text), time) << text;
}

TEST(TimeField, MovesWithTheArrowKeysAroundTheClock) {
    TimeField field("Start", [](TimeOfDay time) {
        return QString("%1:%2")
            .arg(time.hour, 2, 10, QChar('0'))
            .arg(time.minute, 2, 10, QChar('0'));
    });
    field.setTime({23, 58});
    std::string shown;
    const auto move = [&](int cursor, Qt::Key key) {
        field.deselect();
        field.setCursorPosition(cursor);
        QTest::keyClick(&field, key);
        shown += field.text().toStdString() + " ";
    };
    move(0, Qt::Key_Up);
    move(5, Qt::Key_Up);
    move(5, Qt::Key_Up);
    move(1, Qt::Key_Down);
    move(5, Qt::Key_Down);
    EXPECT_EQ(shown, "00:58 01:00 01:05 00:05 00:00 ");
}

TEST(Theme, KeepsTextReadableOnEverySurface) {
    using Color = Theme::Color;
    for (const auto scheme : {Theme::Scheme::light, Theme::Scheme::dark}) {
        for (const auto surface : {Color::window, Color::surface, Color::sidebar})
            for (const auto text : {Color::text, Color::secondary})
                EXPECT_GE(contrast(Theme::color(text, scheme), Theme::color(surface, scheme)), 4.5);
        for (const auto surface : {Color::window, Color::surface}) {
            for (const auto text : {Color::missed, Color::focusAccent, Color::good})
                EXPECT_GE(contrast(Theme::color(text, scheme), Theme::color(surface, scheme)), 4.5)
                    << static_cast<int>(text);
            for (const auto symbol : {Color::workAccent, Color::privateAccent, Color::snoozed})
                EXPECT_GE(contrast(Theme::color(symbol, scheme), Theme::color(surface, scheme)), 3)
                    << static_cast<int>(symbol) << static_cast<int>(scheme);
        }
        for (const auto fill : {Color::workAccent, Color::privateAccent, Color::missed,
                                Color::focusAccent, Color::good}) {
            const QColor background = Theme::color(fill, scheme);
            EXPECT_GE(contrast(Theme::textOn(background), background), 4.5);
        }
    }
}

}  // namespace
}  // namespace tendel

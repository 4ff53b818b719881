// Puts the panel on the screen in one state, to be looked at:
//   panel_preview [--next today | tomorrow | later | none | lengthy] [--day usual | dense | over]
//                 [--pause MINUTES] [--timer focus | paused | break | ready] [--open] [--keys N]
//                 [--dark] [--contrast] [--locale de_DE] [--history DAYS] [--shot FILE]
// With --shot it draws itself into a picture and ends. Tells how long the opening took, until the
// panel was painted, and when the streak was known.

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QTest>
#include <QTimer>

#include "../window/QtEnvironment.h"
#include "reminders/ReminderSchedule.h"
#include "support/WholeApplication.h"
#include "ui/panel/Panel.h"
#include "ui/panel/PanelWindow.h"
#include "ui/theme/Theme.h"

using namespace tendel;
using std::chrono::minutes;

namespace {

void fill(test::WholeApplication& desk, const QString& next, const QString& day) {
    const bool isLater = next == "tomorrow" || next == "later";
    desk.loop.setWallClock(desk.at(isLater ? "18:20:00" : "14:13:00") +
                           std::chrono::days(next == "later" ? 4 : 0));
    if (next == "none") return;
    std::vector<Reminder> reminders;
    const auto add = [&](const char* title, const char* symbol, int interval) {
        Reminder made;
        made.title = title;
        made.symbolName = symbol;
        made.intervalMinutes = interval;
        made.setStart({9, 0});
        reminders.push_back(made);
    };
    const bool isDense = day == "dense";
    add("Look Away", "eye", isDense ? 6 : 45);
    add("Drink Water", "drop", isDense ? 10 : 60);
    if (next == "lengthy")
        add("Rechtsschutzversicherungsgesellschaften anrufen und den Termin best\xc3\xa4tigen",
            "phone", 40);
    desk.save([&](Store::Writer& writer) {
        for (const Reminder& reminder : reminders)
            writer.insert(reminder);
    });
}

void live(test::WholeApplication& desk, int days) {
    const Instant now = desk.loop.now();
    ScheduleSearch search(desk.calendar, *desk.app.settings.workingHours);
    desk.save([&](Store::Writer& writer) {
        int i = 0;
        for (const Reminder& reminder : desk.store->reminders()) {
            auto due = search.nextFireDate(
                reminder, desk.calendar.adding(-days, desk.calendar.day(now)).start);
            for (; due && *due < now; due = search.nextFireDate(reminder, *due))
                writer.insert(ReminderEvent(reminder, *due,
                                            ++i % 6 == 3 ? Outcome::expired : Outcome::done, *due));
        }
    });
}

void bring(FocusTimer& timer, SimulatedEventLoop& loop, const QString& phase) {
    timer.start();
    loop.advance(minutes(9) + std::chrono::seconds(18));
    if (phase == "paused") timer.pause();
    if (phase == "break" || phase == "ready") timer.skip();
    if (phase == "break") loop.advance(minutes(1));
    if (phase == "ready") timer.skip();
}

// Tells when a widget was first painted.
struct FirstPaint : QObject {
    QElapsedTimer clock;
    std::optional<qint64> after;  // nanoseconds
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint && !after)
            QMetaObject::invokeMethod(
                this, [this] { after = clock.nsecsElapsed(); }, Qt::QueuedConnection);
        return false;
    }
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QCommandLineParser options;
    for (const auto* flag : {"open", "dark", "contrast"})
        options.addOption({QString(flag), QString()});
    for (const auto* value : {"next", "day", "pause", "timer", "keys", "locale", "history", "shot"})
        options.addOption({QString(value), QString(), "value"});
    options.process(application);
    Theme::instance().setDark(options.isSet("dark"));
    Theme::instance().setHighContrast(options.isSet("contrast"));
    test::WholeApplication desk;
    if (options.isSet("locale"))
        desk.calendar = Calendar("Europe/Berlin", options.value("locale").toStdString());
    const QString next = options.value("next");
    fill(desk, next, options.value("day"));
    live(desk, options.isSet("history") ? options.value("history").toInt() : 3);
    desk.app.start();
    if (options.isSet("pause"))
        desk.app.scheduler.pause(desk.loop.now() + minutes(options.value("pause").toInt()));
    if (options.isSet("timer")) bring(desk.app.focus, desk.loop, options.value("timer"));
    if (options.isSet("pause")) desk.loop.advance(minutes(7));

    Panel panel(desk.app);
    FirstPaint paint;
    application.installEventFilter(&paint);
    paint.clock.start();
    panel.openAt(QPoint(900, 4));
    while (!paint.after && paint.clock.elapsed() < 2000)
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    PanelWindow* window = nullptr;
    for (QWidget* each : QApplication::topLevelWidgets())
        if (auto* found = qobject_cast<PanelWindow*>(each)) window = found;
    qInfo("painted after %.1f ms", double(paint.after.value_or(-1)) / 1e6);
    paint.clock.restart();
    desk.loop.runPending();
    qInfo("streak known after another %.1f ms", double(paint.clock.nsecsElapsed()) / 1e6);
    if (options.isSet("open")) test::control<QAbstractButton>(*window, "Pause Reminders")->click();
    for (int i = options.value("keys").toInt(); i > 0; --i)
        QTest::keyClick(window->focusWidget() ? window->focusWidget() : window, Qt::Key_Down);
    if (options.isSet("shot"))
        QTimer::singleShot(200, [&] {
            window->grab().save(options.value("shot"));
            QApplication::quit();
        });
    return QApplication::exec();
}

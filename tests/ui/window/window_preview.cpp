// Puts the main window on the screen with sample reminders, to be looked at:
//   window_preview [--private] [--dark] [--empty] [--off] [--many] [--locale de_DE]
//                  [--size 720x480] [--call | --presentation | --away | --pause] [--waiting N]
//                  [--status TEXT]
//                  [--lengthy]  every text as long as in a language of long words
//                  [--timer resting | focus | paused | break | long | ready | extension | last]
//                  [--timeline usual | dayoff | dense | quiet | morning | night] [--mark N]
//                  [--contrast]
//                  [--new | --edit N | --delete N | --notice | --failure] [--scroll] [--tab]
//                  [--shot FILE]
// With --shot it draws itself into a picture and ends.

#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTimer>
#include <QTranslator>

#include "WindowFixture.h"
#include "library/ReminderTemplate.h"
#include "reminders/ReminderSchedule.h"
#include "support/WholeApplication.h"
#include "ui/theme/Slider.h"
#include "ui/theme/SlimScrollArea.h"
#include "ui/theme/Theme.h"
#include "ui/window/DayTimelineView.h"
#include "ui/window/MainWindow.h"
#include "ui/window/NoticeWindow.h"
#include "ui/window/ReminderCard.h"
#include "ui/window/StatusLine.h"

using namespace tendel;

namespace {

Reminder made(std::string_view id, ReminderKind kind) {
    Reminder reminder;
    for (const ReminderTemplate& entry : ReminderTemplate::library()) {
        if (entry.id != id) continue;
        reminder.title = entry.title;
        reminder.details = entry.details;
        reminder.intervalMinutes = entry.intervalMinutes;
        reminder.durationSeconds = entry.durationSeconds;
        reminder.isBreakSuggestion = entry.isBreak;
    }
    reminder.setKind(kind);
    reminder.setStart(kind == ReminderKind::work ? TimeOfDay{9, 0} : TimeOfDay{17, 30});
    return reminder;
}

void fill(Store& store, bool areAllOff, int many) {
    std::vector<Reminder> reminders;
    for (const auto* id : {"look-away", "stand-up-stretch", "drink-water", "posture-check"})
        reminders.push_back(made(id, ReminderKind::work));
    Reminder late = made("check-messages", ReminderKind::work);
    late.setStart({18, 0});
    reminders.push_back(late);
    Reminder off = made("tidy-desk", ReminderKind::work);
    off.isOn = false;
    reminders.push_back(off);
    Reminder lengthy;
    lengthy.title = "Donaudampfschifffahrtsgesellschaftskapitänsmütze abholen und aufsetzen";
    lengthy.details =
        "Rechtsschutzversicherungsgesellschaften anrufen, danach "
        "Arbeiterunfallversicherungsgesetz lesen und den Termin bestätigen";
    lengthy.intervalMinutes = 90;
    lengthy.setStart({7, 0});
    reminders.push_back(lengthy);
    for (const auto* id : {"short-walk", "have-a-snack", "quiet-minute"})
        reminders.push_back(made(id, ReminderKind::private_));
    Reminder morning = made("fresh-air", ReminderKind::private_);
    morning.setStart({9, 30});
    morning.intervalMinutes = 45;
    reminders.push_back(morning);
    for (int i = 0; i < many; ++i) {
        Reminder one = made("deep-breaths", ReminderKind::work);
        one.title += " " + std::to_string(i + 1);
        one.setStart({i % 24, i % 60});
        reminders.push_back(one);
    }
    static_cast<void>(store.save([&](Store::Writer& writer) {
        for (Reminder& reminder : reminders) {
            if (areAllOff) reminder.isOn = false;
            writer.insert(reminder);
        }
    }));
}

// Doubles the vowels, which makes texts about two fifths longer.
class Lengthy : public QTranslator {
public:
    QString translate(const char*, const char* source, const char*, int) const override {
        static const QRegularExpression vowels("(?<!%)([aeiou])");
        return QString::fromUtf8(source).replace(vowels, "\\1\\1");
    }
    bool isEmpty() const override { return false; }
};

// Brings the focus timer into a phase.
void bring(test::Desk& desk, const QString& phase) {
    using std::chrono::minutes;
    desk.app.settings.focusPlan.set({.focusMinutes = 25, .breakMinutes = 5, .longBreakEvery = 4});
    desk.app.settings.focusMix.set({.levels = {{FocusSound::ocean, 0.45}, {FocusSound::rain, 0.8}},
                                    .on = {FocusSound::brown, FocusSound::ocean}});
    desk.app.settings.breakMix.set({.levels = {}, .on = {FocusSound::ambient}});
    FocusTimer& timer = desk.app.focus;
    if (phase == "resting") return;
    timer.start();
    const int rounds = phase == "long" ? 4 : 2;
    for (int round = 1; round < rounds; ++round) {
        timer.skip();
        timer.skip();
        timer.startNextFocus();
    }
    desk.loop.advance(minutes(9) + std::chrono::seconds(18));
    if (phase == "paused") timer.pause();
    if (phase == "last") desk.loop.advance(minutes(15));
    if (phase == "break" || phase == "long" || phase == "extension" || phase == "ready") {
        timer.skip();
        desk.loop.advance(minutes(1));
    }
    if (phase == "extension") timer.extendFocus();
    if (phase == "ready") timer.skip();
}

// A day that has got that far, with its history and what is on the screen.
void live(test::WholeApplication& desk, const QString& day) {
    using std::chrono::minutes;
    const bool isDayOff = day == "dayoff";
    const char* now = day == "morning" ? "07:10:00"
                      : day == "night" ? "23:52:00"
                      : day == "quiet" ? "17:20:00"
                                       : "14:12:00";
    desk.loop.setWallClock(desk.at(now) + std::chrono::days(isDayOff ? 5 : 0));
    if (day == "quiet") {
        Reminder over = made("drink-water", ReminderKind::work);
        desk.save([&](Store::Writer& writer) { writer.insert(over); });
        return desk.app.start();
    }
    fill(*desk.store, false, day == "dense" ? 40 : 0);
    const Instant t = desk.loop.now();
    const DayInterval today = desk.calendar.day(t);
    ScheduleSearch search(desk.calendar, *desk.app.settings.workingHours);
    desk.save([&](Store::Writer& writer) {
        int i = 0;
        for (const Reminder& reminder : desk.store->reminders()) {
            auto due = search.nextFireDate(reminder, today.start);
            for (; reminder.isOn && due && *due < t - minutes(4);
                 due = search.nextFireDate(reminder, *due)) {
                ++i;
                const Outcome outcome = i % 7 == 3    ? Outcome::expired
                                        : i % 11 == 5 ? Outcome::snoozed
                                        : i % 9 == 2  ? Outcome::breakTaken
                                                      : Outcome::done;
                writer.insert(ReminderEvent(reminder, *due, outcome, *due + minutes(i % 3)));
            }
        }
    });
    desk.app.start();
    if (day == "morning" || day == "night") return;
    const auto& reminders = desk.store->reminders();
    const auto item = [&](std::size_t i) {
        return std::vector{Upcoming::Item::of(reminders.at(i))};
    };
    desk.app.scheduler.keep(item(2), KeptReason::call, t - minutes(42));
    desk.app.alerts.present({.items = item(1), .fireDate = t - minutes(2)});
    desk.app.scheduler.snooze(reminders.at(0).id, minutes(35));
}

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QCommandLineParser options;
    for (const auto* flag :
         {"private", "dark", "empty", "off", "many", "new", "notice", "scroll", "tab", "call",
          "presentation", "away", "pause", "failure", "lengthy", "contrast"})
        options.addOption({QString(flag), QString()});
    for (const auto* value : {"locale", "size", "edit", "delete", "shot", "waiting", "status",
                              "timer", "timeline", "mark"})
        options.addOption({QString(value), QString(), "value"});
    options.process(application);

    Lengthy lengthy;
    if (options.isSet("lengthy")) QApplication::installTranslator(&lengthy);
    Theme::instance().setDark(options.isSet("dark"));
    Theme::instance().setHighContrast(options.isSet("contrast"));
    const std::string locale =
        options.isSet("locale") ? options.value("locale").toStdString() : "en_US";
    test::Desk desk(locale);
    test::WholeApplication lived;
    lived.calendar = Calendar("Europe/Berlin", locale);
    if (options.isSet("timeline")) live(lived, options.value("timeline"));
    TendelApp& app = options.isSet("timeline") ? lived.app : desk.app;
    if (!options.isSet("empty"))
        fill(desk.store, options.isSet("off"), options.isSet("many") ? 1000 : 0);

    Observable<Presence> presence;
    AlertHoldMonitor hold(app.scheduler, presence, app.focus, app.platform.loop);
    if (options.isSet("call")) presence.set(Presence::busyCall);
    if (options.isSet("presentation")) presence.set(Presence::busyPresentation);
    if (options.isSet("away")) presence.set(Presence::away);
    std::vector<Upcoming::Item> waiting;
    for (const Reminder& reminder : desk.store.reminders())
        if (std::ssize(waiting) < options.value("waiting").toInt())
            waiting.push_back(Upcoming::Item::of(reminder));
    desk.app.scheduler.keep(waiting, KeptReason::call, desk.loop.now());
    if (options.isSet("pause")) desk.app.scheduler.pause(desk.loop.now() + std::chrono::hours(15));

    QWidget* shown = nullptr;
    if (options.isSet("failure")) {
        QTimer::singleShot(300, [&] {
            QApplication::activeModalWidget()->grab().save(options.value("shot"));
            if (options.isSet("shot")) QApplication::activeModalWidget()->close();
        });
        return showStartFailure(
            "Couldn't open the reminders store: unable to open database file; starting fresh "
            "failed too: Couldn't move \"/home/ada/.local/share/tendel/Tendel.store\" aside: "
            "Permission denied");
    }
    if (options.isSet("notice")) {
        auto* notice = makeResetNotice(
            "/home/ada/.local/share/tendel/Damaged Store "
            "2026-03-02 at 10.12.00");
        notice->present();
        shown = notice;
    } else {
        QElapsedTimer clock;
        clock.start();
        auto* window = new MainWindow(app, hold.current());
        const QStringList size = options.value("size").split('x');
        if (size.size() == 2) window->resize(size[0].toInt(), size[1].toInt());
        if (options.isSet("status"))
            window->findChild<StatusLine*>()->setStatus("phone", options.value("status"),
                                                        options.value("status"));
        if (options.isSet("private")) window->showSection(SidebarItem::privateReminders);
        if (options.isSet("timer")) {
            window->showSection(SidebarItem::focus);
            bring(desk, options.value("timer"));
        }
        window->comeForward();
        QElapsedTimer wait;
        wait.start();
        while (!window->isActiveWindow() && wait.elapsed() < 2000)
            QApplication::processEvents(QEventLoop::AllEvents, 50);
        if (options.isSet("many")) {
            qInfo("shown after %lld ms", clock.restart());
            desk.loop.advance(std::chrono::minutes(1));
            qInfo("minute's refresh: %lld ms", clock.restart());
        }
        const auto cards = window->findChildren<ReminderCard*>();
        if (options.isSet("tab") && cards.size() > 1) cards[1]->setFocus(Qt::TabFocusReason);
        if (options.isSet("tab") && options.isSet("timer"))
            window->findChildren<Slider*>()[2]->setFocus(Qt::TabFocusReason);
        if (options.isSet("mark"))
            for (auto* timeline : window->findChildren<DayTimelineView*>())
                if (timeline->isVisible()) {
                    timeline->setFocus(Qt::TabFocusReason);
                    timeline->walkTo(options.value("mark").toInt());
                }
        if (options.isSet("new")) window->createReminder();
        if (options.isSet("edit")) window->editReminder({options.value("edit").toInt()});
        if (options.isSet("delete"))
            for (ReminderCard* card : cards)
                if (card->reminder().id.value == options.value("delete").toInt())
                    Q_EMIT card->deleteRequested();
        if (options.isSet("scroll")) {
            QApplication::processEvents();
            for (auto* area : window->findChildren<SlimScrollArea*>())
                area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
        }
        shown = window;
    }
    if (options.isSet("shot"))
        QTimer::singleShot(300, shown, [&] {
            shown->grab().save(options.value("shot"));
            QApplication::quit();
        });
    return QApplication::exec();
}

// Draws the main window's Stats section into pictures, to be looked at:
//   stats_preview FOLDER [--locale de_DE] [--zone Europe/Berlin] [--lengthy] [--contrast]
// makes one of each history, range, colour scheme and width; the scale is Qt's (QT_SCALE_FACTOR).

#include <QAbstractButton>
#include <QApplication>
#include <QCommandLineParser>
#include <QElapsedTimer>
#include <QMenu>
#include <QRegularExpression>
#include <QScrollBar>
#include <QTranslator>

#include <random>

#include "library/ReminderTemplate.h"
#include "ui/stats/HabitList.h"
#include "ui/stats/StatsChart.h"
#include "ui/stats/StatsPage.h"
#include "ui/stats/StatsTiles.h"
#include "ui/theme/SlimScrollArea.h"
#include "ui/window/MainWindow.h"
#include "ui/window/WindowFixture.h"

using namespace tendel;
using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;

namespace {

enum class History { empty, quiet, small, decade };

// Doubles the vowels, which makes texts about two fifths longer.
class Lengthy : public QTranslator {
public:
    QString translate(const char*, const char* source, const char*, int) const override {
        static const QRegularExpression vowels("(?<!%)([aeiou])");
        return QString::fromUtf8(source).replace(vowels, "\\1\\1");
    }
    bool isEmpty() const override { return false; }
};

std::vector<Reminder> reminders(int count) {
    std::vector<Reminder> made;
    for (const ReminderTemplate& entry : ReminderTemplate::library()) {
        if (std::ssize(made) == count) break;
        Reminder reminder;
        reminder.title = entry.title;
        reminder.setKind(made.size() % 4 == 3 ? ReminderKind::private_ : ReminderKind::work);
        made.push_back(reminder);
    }
    return made;
}

// So many days up to now, with fewer alerts on days off.
void fill(test::Desk& desk, int dayCount, int reminderCount) {
    std::mt19937 random(7);
    const auto upTo = [&](int bound) {
        return static_cast<int>(random() % static_cast<unsigned>(bound));
    };
    const Instant now = desk.loop.now();
    static_cast<void>(desk.store.save([&](Store::Writer& writer) {
        auto known = reminders(reminderCount);
        for (Reminder& each : known)
            each.id = writer.insert(each);
        Reminder gone;
        gone.title = "Donaudampfschifffahrtsgesellschaftskapitänsmütze abholen und aufsetzen";
        gone.id = writer.insert(gone);
        known.push_back(gone);
        for (int day = dayCount; day >= 0; --day) {
            const DayInterval on = desk.calendar.adding(-day, desk.calendar.day(now));
            const bool isFree = on.weekday == 1 || on.weekday == 7;
            for (int i = isFree ? 6 : 28; i > 0; --i) {
                const auto which = static_cast<std::size_t>(upTo(static_cast<int>(known.size())));
                Instant due = on.start + hours(8) + minutes(upTo(11 * 60));
                // One is mostly missed after lunch.
                const bool isLunch = which == 1;
                if (isLunch) due = on.start + hours(14) + minutes(upTo(110));
                if (due > now) continue;
                const int dice = isLunch ? upTo(14) : upTo(10);
                const Outcome outcome = dice < 5    ? Outcome::done
                                        : dice == 5 ? Outcome::breakTaken
                                        : dice == 6 ? Outcome::snoozed
                                        : dice == 7 ? Outcome::skipped
                                        : dice == 8 ? Outcome::done
                                                    : Outcome::expired;
                writer.insert(ReminderEvent(known[which], due, outcome, due));
            }
            for (int i = isFree ? upTo(2) : 2 + upTo(4); i > 0; --i) {
                FocusBlock block;
                block.start = on.start + hours(8) + minutes(upTo(8 * 60));
                if (block.start > now) continue;
                block.focusedSeconds = 60 * (10 + upTo(16));
                block.finished = upTo(4) > 0;
                block.end = block.start + minutes(25);
                writer.insert(block);
            }
        }
        writer.remove(gone.id);
    }));
}

void makeHistory(test::Desk& desk, History history) {
    switch (history) {
        case History::empty:
            return;
        case History::quiet: {
            Reminder reminder;
            reminder.title = "Stretch";
            static_cast<void>(desk.store.save([&](Store::Writer& writer) {
                reminder.id = writer.insert(reminder);
                const Instant due = desk.loop.now() - days(60);
                writer.insert(ReminderEvent(reminder, due, Outcome::done, due));
            }));
            return;
        }
        case History::small:
            return fill(desk, 9, 4);
        case History::decade:
            return fill(desk, 3650, 40);
    }
}

void settle() {
    for (int i = 0; i < 5; ++i)
        QApplication::processEvents();
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QCommandLineParser options;
    for (const auto* flag : {"lengthy", "contrast"})
        options.addOption({QString(flag), QString()});
    for (const auto* value : {"locale"})
        options.addOption({QString(value), QString(), "value"});
    options.process(application);
    const QString folder = options.positionalArguments().value(0, ".");
    Lengthy lengthy;
    if (options.isSet("lengthy")) QApplication::installTranslator(&lengthy);
    Theme::instance().setHighContrast(options.isSet("contrast"));

    const QString scale = qEnvironmentVariable("QT_SCALE_FACTOR", "1");
    for (const auto& [history, name] :
         {std::pair(History::empty, "empty"), std::pair(History::quiet, "quiet"),
          std::pair(History::small, "small"), std::pair(History::decade, "decade")}) {
        test::Desk desk(options.isSet("locale") ? options.value("locale").toStdString() : "en_GB");
        desk.loop.advance(hours(4));
        makeHistory(desk, history);
        Observable<std::optional<AlertHold>> hold;
        auto* window = new MainWindow(desk.app, hold);
        window->showSection(SidebarItem::stats);
        window->show();
        if (history == History::decade)
            desk.app.settings.dailyGoal.set(DailyGoal{
                "Send the chapter on the Donaudampfschifffahrtsgesellschaftskapitänsmütze to Ada",
                desk.loop.now() - days(1), false});
        if (history == History::small)
            desk.app.settings.dailyGoal.set(DailyGoal{"Finish the draft", desk.loop.now(), true});
        for (const StatsRange range : {StatsRange::today, StatsRange::week, StatsRange::month})
            for (const bool isDark : {false, true})
                for (const QSize size : {QSize(720, 760), QSize(900, 980), QSize(1500, 1000)}) {
                    Theme::instance().setDark(isDark);
                    desk.app.settings.statsRange.set(range);
                    window->resize(size);
                    settle();
                    const QString file =
                        QStringLiteral("%1/%2-%3-%4-%5@%6x.png")
                            .arg(folder, QString(name), QString::fromUtf8(rawValue(range).data()),
                                 isDark ? "dark" : "light")
                            .arg(size.width())
                            .arg(scale);
                    const auto shoot = [&](const QString& suffix) {
                        settle();
                        window->grab().save(QString(file).replace(".png", suffix + ".png"));
                    };
                    shoot({});
                    if (history != History::small || size.width() != 900) continue;
                    for (QAbstractButton* each : window->findChildren<QAbstractButton*>())
                        if (each->accessibleName() == QLatin1String("Export and import"))
                            each->click();
                    settle();
                    if (auto* menu = window->findChild<QMenu*>()) {
                        menu->grab().save(QString(file).replace(".png", "-menu.png"));
                        menu->close();
                    }
                    for (MarkedView* view : window->findChildren<MarkedView*>()) {
                        if (!view->isVisible()) continue;
                        view->setFocus(Qt::TabFocusReason);
                        view->walkTo(1);
                        shoot("-" + view->accessibleName());
                        view->clearFocus();
                    }
                }
        QElapsedTimer clock;
        clock.start();
        Reminder once;
        static_cast<void>(desk.store.save([&](Store::Writer& writer) {
            writer.insert(ReminderEvent(once, desk.loop.now(), Outcome::done, desk.loop.now()));
        }));
        settle();
        qInfo("%s: a save is shown after %lld ms", name, clock.elapsed());
        delete window;
        settle();
    }
}

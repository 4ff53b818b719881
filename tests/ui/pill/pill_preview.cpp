// Shows the live pill on the screen, so that it can be looked at; with --card its card, with
// --alert an alert that grows out of it, slowly, and tucks in again.
//
//   TENDEL_SIMULATE_NOTCH=200x32 pill_preview --show focus --card

#include <QApplication>
#include <QCommandLineParser>
#include <QCursor>
#include <QScreen>
#include <QTimer>

#include "platform/linux/LinuxEventLoop.h"
#include "platform/qt/QtScreens.h"
#include "storage/Defaults.h"
#include "ui/alert/AlertWindow.h"
#include "ui/pill/PillWindow.h"

using namespace tendel;
using namespace std::chrono_literals;

namespace {

using Source = LiveActivity::Source;

NotchAlertContent content(Instant now) {
    NotchAlertContent content;
    content.id = AlertQueue::Entry::newId();
    content.title = "Look away";
    content.detail = "Look at something far away for 20 seconds.";
    content.systemImage = "eye";
    content.durationSeconds = 20;
    content.breakEndsAt = now + 14s;
    return content;
}

void show(const QString& what, NotchLiveController& live, Instant now) {
    const Calendar calendar = Calendar::system();
    if (what == "break" || what == "finished") {
        live.showBreak(content(now));
        if (what == "finished") live.endBreak("Nice work!");
        return;
    }
    if (what == "pause")
        return live.update(LiveActivity::reminderPause(now - 20min, now + 41min, calendar),
                           Source::pause);
    using Phase = FocusSession::Phase;
    FocusSession session;
    session.round = 2;
    session.begin(what == "short-break"  ? Phase::shortBreak
                  : what == "long-break" ? Phase::longBreak
                  : what == "ready"      ? Phase::ready
                                         : Phase::focus,
                  now - 6min, what == "ready" ? 0 : 1500);
    if (what == "paused") {
        session.pausedRemaining = 754;
        session.endsAt.reset();
    }
    live.update(LiveActivity::focus(session, LiveActivity::Control::mute, calendar), Source::focus);
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    QCommandLineParser given;
    given.addOptions(
        {{"show", "break, finished, focus, short-break, long-break, ready, paused or pause",
          "activity", "focus"},
         {"card", "with its card open"},
         {"alert", "an alert grows out of it at this speed", "speed"},
         {"reduce-motion", "as the desktop may ask for"}});
    given.addHelpOption();
    given.process(application);

    LinuxEventLoop loop;
    QtScreens screens;
    Defaults defaults;
    const AppSettings settings(defaults);
    NotchLiveController live(settings, loop, screens, [](const ScreenInfo&) { return false; });
    live.model().reduceMotion = given.isSet("reduce-motion");
    OverlayStack stack;
    NotchAlertModel model(loop);
    model.reduceMotion = given.isSet("reduce-motion");
    const NotchAlertActions actions;
    AlertWindow alert(model, actions, loop, stack);
    PillWindow pill(live, loop, stack);
    live.panel = &pill;
    model.onHidden = [&] { alert.hide(); };

    show(given.value("show"), live, loop.now());
    if (given.isSet("card")) {
        const QRect screen = QGuiApplication::primaryScreen()->geometry();
        QCursor::setPos(screen.center().x(), screen.top() + 4);
        live.model().openCard();
    }
    if (given.isSet("alert"))
        QTimer::singleShot(1500, [&] {
            const ScreenInfo screen = screens.all().front();
            const auto geometry =
                NotchAlertGeometry::of(screen, live.restingWidth(screen), AlertStyle::full);
            model.hasNotch = true;
            model.speed = given.value("alert").toDouble();
            model.restingWidth = geometry.restingWidth;
            alert.show(geometry.panelFrame(screen.frame), geometry);
            NotchAlertContent shown = content(loop.now());
            shown.breakEndsAt.reset();
            model.present(shown);
            QTimer::singleShot(static_cast<int>(1500 / model.speed), [&] { model.dismiss(); });
        });
    return QApplication::exec();
}

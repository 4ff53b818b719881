// Shows the alert on the screen and holds it still in one phase, so that it can be looked at.
//
//   TENDEL_SIMULATE_NOTCH=200x32 alert_preview --phase expanded --text "Look away" --waiting 3
//   alert_preview --phase play     # as it moves: opens, and Done celebrates

#include <QApplication>
#include <QCommandLineParser>

#include <chrono>

#include "platform/linux/LinuxEventLoop.h"
#include "platform/qt/DesktopPreferences.h"
#include "platform/qt/QtScreens.h"
#include "ui/alert/AlertWindow.h"

using namespace tendel;

namespace {

// So slow that no step of the model follows another.
constexpr double standstill = 1e-6;

const QList<QCommandLineOption> options{
    {"phase", "hidden, peek, expanded, done or play", "phase", "expanded"},
    {"size", "full or compact", "size", "full"},
    {"kind", "work or private", "kind", "work"},
    {"alert", "reminder, focusEnded or breakEnded", "alert", "reminder"},
    {"text", "the title", "text", "Look away"},
    {"detail", "the details", "detail", "Look at something far away for 20 seconds."},
    {"symbol", "the symbol's name", "symbol", "eye"},
    {"notice", "why it comes late", "notice"},
    {"waiting", "how many wait behind it", "count", "0"},
    {"offers", "length of the timed break that it offers, in seconds", "seconds"},
    {"left", "seconds left of the running break", "seconds"},
    {"had-break", "offer that there was a break already"},
    {"pill", "offer to hide the running break"},
    {"message", "what stands under the check mark", "message", "Nice work!"},
};

NotchAlertContent contentFrom(const QCommandLineParser& given, Instant now) {
    const auto text = [&](const char* name) { return given.value(name).toStdString(); };
    NotchAlertContent content;
    content.id = AlertQueue::Entry::newId();
    content.title = text("text");
    content.detail = text("detail");
    content.systemImage = text("symbol");
    content.kind = reminderKind(text("kind"));
    content.queuedCount = given.value("waiting").toInt();
    if (given.isSet("notice")) content.notice = text("notice");
    if (given.isSet("offers")) content.durationSeconds = given.value("offers").toInt();
    if (given.isSet("left"))
        content.breakEndsAt = now + std::chrono::seconds(given.value("left").toInt());
    content.offersHadBreak = given.isSet("had-break");
    content.canHideInPill = given.isSet("pill");
    if (given.value("alert") == "focusEnded") content.style = NotchAlertContent::Style::focusEnded;
    if (given.value("alert") == "breakEnded") content.style = NotchAlertContent::Style::breakEnded;
    return content;
}

// Brings the model there without a motion.
void hold(NotchAlertModel& model, const QString& phase, const NotchAlertContent& content,
          const std::string& message) {
    model.speed = standstill;
    if (phase == "hidden") return;
    model.reduceMotion = phase != "peek";  // opens at once
    model.present(content);
    model.reduceMotion = false;
    if (phase == "done") model.complete(std::nullopt, message);
    model.speed = 1;
}

}  // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser given;
    given.addOptions(options);
    given.addHelpOption();
    given.process(application);

    LinuxEventLoop loop;
    QtScreens screens;
    const DesktopPreferences preferences;
    NotchAlertModel model(loop);
    NotchAlertActions actions;
    model.style = given.value("size") == "compact" ? AlertStyle::compact : AlertStyle::full;
    const ScreenInfo screen = screens.all().front();
    const auto geometry = NotchAlertGeometry::of(screen, std::nullopt, model.style);
    model.hasNotch = geometry.notchSize.has_value();

    AlertWindow window(model, actions, loop);
    const NotchAlertContent content = contentFrom(given, loop.now());
    const std::string message = given.value("message").toStdString();
    const Rect frame = geometry.panelFrame(screen.frame);
    if (given.value("phase") != "play") {
        hold(model, given.value("phase"), content, message);
        window.show(frame, geometry);
        return QApplication::exec();
    }
    actions.done = [&] { model.complete(std::nullopt, message); };
    actions.skip = actions.snooze = [&] { model.dismiss(); };
    model.reduceMotion = preferences.reducesMotion();
    model.onHidden = [] { QApplication::quit(); };
    window.show(frame, geometry);
    model.present(content);
    return QApplication::exec();
}

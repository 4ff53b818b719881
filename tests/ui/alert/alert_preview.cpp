// Shows the alert on the screen and holds it still in one phase, so that it can be looked at.
//
//   TENDEL_SIMULATE_NOTCH=200x32 alert_preview --phase expanded --text "Look away" --waiting 3

#include <QApplication>
#include <QCommandLineParser>

#include "platform/linux/LinuxEventLoop.h"
#include "platform/qt/QtScreens.h"
#include "ui/alert/AlertWindow.h"

using namespace tendel;

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "xcb");
    QApplication application(argc, argv);
    QCommandLineParser given;
    given.addOptions({{"phase", "peek, expanded or done", "phase", "expanded"},
                      {"size", "full or compact", "size", "full"},
                      {"kind", "work or private", "kind", "work"},
                      {"text", "the title", "text", "Look away"},
                      {"notice", "why it comes late", "notice"},
                      {"waiting", "how many wait behind it", "count", "0"},
                      {"left", "seconds left of the running break", "seconds"}});
    given.addHelpOption();
    given.process(application);

    LinuxEventLoop loop;
    NotchAlertModel model(loop);
    NotchAlertContent content;
    content.id = AlertQueue::Entry::newId();
    content.title = given.value("text").toStdString();
    content.detail = "Look at something far away for 20 seconds.";
    content.systemImage = "eye";
    content.kind = reminderKind(given.value("kind").toStdString());
    content.queuedCount = given.value("waiting").toInt();
    if (given.isSet("notice")) content.notice = given.value("notice").toStdString();
    if (given.isSet("left"))
        content.breakEndsAt = loop.now() + std::chrono::seconds(given.value("left").toInt());

    QtScreens screens;
    const ScreenInfo screen = screens.all().front();
    model.style = given.value("size") == "compact" ? AlertStyle::compact : AlertStyle::full;
    const auto geometry = NotchAlertGeometry::of(screen, std::nullopt, model.style);
    model.hasNotch = geometry.notchSize.has_value();
    const NotchAlertActions actions;
    OverlayStack stack;
    AlertWindow window(model, actions, loop, stack);

    model.speed = 1e-6;  // so slow that no step of the model follows another
    model.reduceMotion = given.value("phase") != "peek";  // opens at once
    model.present(content);
    model.reduceMotion = false;
    if (given.value("phase") == "done") model.complete(std::nullopt, "Nice work!");
    model.speed = 1;
    window.show(geometry.panelFrame(screen.frame), geometry);
    return QApplication::exec();
}

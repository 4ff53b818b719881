#include <QApplication>

#include <cstdio>
#include <span>
#include <string_view>

#include "app/TendelApp.h"
#include "base/Log.h"
#include "platform/linux/DataFolders.h"
#include "platform/linux/LinuxEventLoop.h"
#include "platform/linux/LinuxPresence.h"
#include "platform/linux/TerminationSignals.h"
#include "platform/linux/pulse/PulseOutput.h"
#include "platform/qt/ApplicationService.h"
#include "platform/qt/DesktopPreferences.h"
#include "platform/qt/QtScreens.h"
#include "storage/Persistence.h"
#include "ui/Interface.h"
#include "ui/remote/RemoteObject.h"
#include "ui/theme/Theme.h"
#include "ui/window/NoticeWindow.h"

namespace {

// Set by the entry that starts the program at login, and by that which starts it when the bus has
// something for it: it then starts quietly, without its window.
constexpr std::string_view atLoginArgument = "--at-login";
constexpr std::string_view asServiceArgument = "--as-service";
// Begins the name of an action of the desktop entry, which is carried out in place of showing the
// window, by the program that runs already if there is one.
constexpr std::string_view actionArgument = "--action=";

struct Arguments {
    bool isQuiet = false;
    QString action{};
};

Arguments parsed(int argc, char** argv) {
    Arguments arguments;
    for (const std::string_view argument : std::span(argv, static_cast<std::size_t>(argc))) {
        if (argument == atLoginArgument || argument == asServiceArgument) arguments.isQuiet = true;
        if (argument.starts_with(actionArgument))
            arguments.action = QString::fromLocal8Bit(argument.substr(actionArgument.size()));
    }
    return arguments;
}

void setDefaultEnvironment(const char* name, const char* value) {
    if (qEnvironmentVariableIsEmpty(name)) qputenv(name, value);
}

}  // namespace

int main(int argc, char** argv) {
    using namespace tendel;

    TerminationSignals termination;
    // The alert is a window of the X server, also where the session is a Wayland one.
    setDefaultEnvironment("QT_QPA_PLATFORM", "xcb");
    // The theme of a desktop's own toolkit would load that toolkit: 42 MB. Colours and fonts are
    // asked for instead.
    setDefaultEnvironment("QT_QPA_PLATFORMTHEME", "generic");
    QApplication::setQuitOnLastWindowClosed(false);
    QApplication::setApplicationName("Tendel");
    QApplication::setDesktopFileName("app.tendel.Tendel");
    QApplication application(argc, argv);
    // Not `quit`, which a window with unsaved text may refuse.
    termination.watch([] { QApplication::exit(); });

    const Arguments arguments = parsed(argc, argv);
    RemoteObject remote;
    ApplicationService service(remote);
    switch (service.claim(arguments.action)) {
        case ApplicationService::Start::first:
            break;
        case ApplicationService::Start::handedOver:
            return 0;
        case ApplicationService::Start::refused:
            return 1;
    }

    LinuxEventLoop loop;
    Calendar calendar = Calendar::system();
    auto opened = openOrStartFresh(storeFile(), loop.now());
    if (!opened) {
        std::fprintf(stderr, "%s\n", opened.error().c_str());
        return showStartFailure(opened.error());
    }
    Defaults defaults(defaultsFile());
    QtScreens screens;
    PulseOutput audio(loop);
    DesktopPreferences preferences;
    LinuxPresence presence(loop);

    TendelApp app({.loop = loop,
                   .calendar = calendar,
                   .screens = screens,
                   .audio = audio,
                   .presence = presence.sources()},
                  defaults, *opened->store);
    const auto followPreferences = [&] {
        app.alerts.model().reduceMotion = preferences.reducesMotion();
        app.live.model().reduceMotion = preferences.reducesMotion();
        Theme& theme = Theme::instance();
        theme.setHighContrast(preferences.hasHighContrast());
        theme.setFontFamily(preferences.fontFamily());
        if (preferences.colorScheme() != DesktopPreferences::ColorScheme::noPreference)
            theme.setDark(preferences.colorScheme() == DesktopPreferences::ColorScheme::dark);
    };
    QObject::connect(&preferences, &DesktopPreferences::changed, &application, followPreferences);
    followPreferences();
    Interface interface(app);
    RemoteControl control(app, interface.hold());
    remote.serve(control);
    service.onActivate = [&app] { app.navigation.requestWindow(); };
    service.onAction = [&remote](const QString& action) { remote.perform(action); };
    QObject::connect(&application, &QApplication::aboutToQuit, [&app] { app.willTerminate(); });

    if (opened->damagedStoreBackup) interface.showResetNotice(*opened->damagedStoreBackup);
    app.start();
    if (!arguments.action.isEmpty())
        remote.perform(arguments.action);
    else if (!arguments.isQuiet)
        app.navigation.requestWindow();
    return QApplication::exec();
}

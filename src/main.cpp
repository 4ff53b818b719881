#include <QApplication>

#include <cstdio>
#include <cstring>

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
#include "ui/theme/Theme.h"
#include "ui/window/NoticeWindow.h"

namespace {

// Set by the entry that starts the program at login: it then starts quietly, without its window.
constexpr auto atLoginArgument = "--at-login";

bool isStartedAtLogin(int argc, char** argv) {
    for (int i = 1; i < argc; ++i)
        if (std::strcmp(argv[i], atLoginArgument) == 0) return true;
    return false;
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

    ApplicationService service;
    if (service.claim() == ApplicationService::Start::handedOver) return 0;

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
        Theme& theme = Theme::instance();
        theme.setHighContrast(preferences.hasHighContrast());
        theme.setFontFamily(preferences.fontFamily());
        if (preferences.colorScheme() != DesktopPreferences::ColorScheme::noPreference)
            theme.setDark(preferences.colorScheme() == DesktopPreferences::ColorScheme::dark);
    };
    QObject::connect(&preferences, &DesktopPreferences::changed, &application, followPreferences);
    followPreferences();
    Interface interface(app);
    service.onActivate = [&app] { app.navigation.requestWindow(); };
    QObject::connect(&application, &QApplication::aboutToQuit, [&app] { app.willTerminate(); });

    if (opened->damagedStoreBackup) interface.showResetNotice(*opened->damagedStoreBackup);
    app.start();
    if (!isStartedAtLogin(argc, argv)) app.navigation.requestWindow();
    return QApplication::exec();
}

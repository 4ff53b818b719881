#include "ui/Interface.h"

#include "storage/Persistence.h"
#include "ui/alert/AlertWindow.h"
#include "ui/pill/PillWindow.h"
#include "ui/tray/TrayIcon.h"
#include "ui/window/MainWindow.h"
#include "ui/window/NoticeWindow.h"

namespace tendel {

Interface::Interface(TendelApp& app)
    : app_(app),
      hold_(app.scheduler, app.presence.state(), app.focus, app.platform.loop),
      alertWindow_(std::make_unique<AlertWindow>(app.alerts.model(), app.alerts.actions(),
                                                 app.platform.loop, overlays_)),
      pillWindow_(std::make_unique<PillWindow>(app.live, app.platform.loop, overlays_)),
      panel_(app),
      trayIcon_(std::make_unique<TrayIcon>(app, hold_.current())) {
    app_.alerts.panel = alertWindow_.get();
    app_.live.panel = pillWindow_.get();
    trayIcon_->onActivate = [this](QPoint icon) { panel_.toggleAt(icon); };
    windowRequests_ = app_.navigation.windowRequests().observe([this] { openMainWindow(); });
}

Interface::~Interface() {
    delete mainWindow_;
    app_.alerts.panel = nullptr;
    app_.live.panel = nullptr;
}

void Interface::openMainWindow() {
    if (!mainWindow_) mainWindow_ = new MainWindow(app_, hold_.current());
    mainWindow_->comeForward();
}

void Interface::showResetNotice(const std::filesystem::path& folder) {
    // Deletes itself when it is answered.
    makeResetNotice(folder)->present();
}

}  // namespace tendel

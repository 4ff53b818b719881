#pragma once

#include <QPointer>

#include <filesystem>
#include <memory>

#include "app/AlertHold.h"
#include "app/TendelApp.h"
#include "ui/alert/OverlayStack.h"
#include "ui/panel/Panel.h"

namespace tendel {

class AlertWindow;
class MainWindow;
class PillWindow;
class TrayIcon;

// The program's windows. The alert's window and the tray icon live as long as the program; the main
// window is made when it is asked for and deleted when it is closed, so that it costs nothing while
// reminders run.
class Interface {
public:
    explicit Interface(TendelApp& app);
    ~Interface();

    // Tells that the data were moved aside into `folder` and a fresh store was begun.
    void showResetNotice(const std::filesystem::path& folder);
    // What holds alerts back, for all that show it.
    const Observable<std::optional<AlertHold>>& hold() const { return hold_.current(); }

private:
    void openMainWindow();

    TendelApp& app_;
    AlertHoldMonitor hold_;
    OverlayStack overlays_;
    std::unique_ptr<AlertWindow> alertWindow_;
    std::unique_ptr<PillWindow> pillWindow_;
    Panel panel_;
    std::unique_ptr<TrayIcon> trayIcon_;
    QPointer<MainWindow> mainWindow_;
    Subscription windowRequests_;  // last member: goes first
};

}  // namespace tendel

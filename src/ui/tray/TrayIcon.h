#pragma once

#include <QMenu>
#include <QSystemTrayIcon>

#include <memory>
#include <optional>
#include <vector>

#include "app/AlertHold.h"
#include "app/TendelApp.h"
#include "ui/tray/TrayHost.h"

namespace tendel {

// The icon in the desktop's tray: opens the main window, pauses reminders, and says what holds
// them back or comes next. Where there is no tray it waits for one. Main thread only; the app must
// outlive it.
class TrayIcon {
public:
    TrayIcon(TendelApp& app, const Observable<std::optional<AlertHold>>& hold);

private:
    void appear();
    void buildMenu();
    void refresh();
    bool isPaused() const { return app_.scheduler.pausedUntil().get().has_value(); }
    QString toolTip() const;

    TendelApp& app_;
    const Observable<std::optional<AlertHold>>& hold_;
    TrayHost host_;
    QMenu menu_;
    QMenu* pauseMenu_ = nullptr;
    QAction* resume_ = nullptr;
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::optional<bool> showsPaused_;          // in the icon
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

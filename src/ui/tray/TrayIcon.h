#pragma once

#include <QPoint>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/AlertHold.h"
#include "app/TendelApp.h"
#include "ui/tray/StatusNotifierItem.h"
#include "ui/tray/TrayContent.h"
#include "ui/tray/TrayHost.h"

namespace tendel {

class XEmbedIcon;

// The icon in the desktop's tray: tells what runs and what comes next, and pauses reminders. Where
// there is no tray it waits for one, and it moves when trays change. Main thread only; the app must
// outlive it.
class TrayIcon {
public:
    TrayIcon(TendelApp& app, const Observable<std::optional<AlertHold>>& hold);
    ~TrayIcon();

    // The icon was clicked at that place, in the coordinates of the screens; (0, 0): at the
    // pointer.
    std::function<void(QPoint)> onActivate;

private:
    void serve(Tray tray);
    void refresh();
    void togglePause();
    bool isPaused() const { return app_.scheduler.pausedUntil().get().has_value(); }
    TrayContent content() const;
    QString status() const;
    QString time() const;

    TendelApp& app_;
    const Observable<std::optional<AlertHold>>& hold_;
    TrayActions actions_;
    StatusNotifierItem item_{actions_};
    std::unique_ptr<XEmbedIcon> xEmbedIcon_;
    TrayHost host_;
    Timer soon_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

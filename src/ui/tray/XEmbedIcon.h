#pragma once

#include <QSystemTrayIcon>

#include "ui/tray/TrayContent.h"
#include "ui/tray/TrayMenu.h"

namespace tendel {

// The icon in a tray of the X server. To be made only while there is no StatusNotifier host, where
// Qt would put it otherwise. Main thread only; `actions` must outlive it.
class XEmbedIcon {
public:
    explicit XEmbedIcon(const TrayActions& actions);

    void show(const TrayContent& content);

private:
    const TrayActions& actions_;
    TrayContent content_;
    TrayMenu menu_;
    QSystemTrayIcon icon_;  // last member: goes before its menu
};

}  // namespace tendel

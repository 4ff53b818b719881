#pragma once

#include <QPoint>
#include <QString>

#include <functional>
#include <vector>

#include "menubar/PanelMenu.h"
#include "ui/tray/TrayImage.h"

namespace tendel {

// What the icon shows, in whichever tray it is.
struct TrayContent {
    TrayImage image{};
    QString label{};  // "Stretch in 12m"; the tray's own text beside the icon, where it has one
    QString labelGuide{};  // as wide as the label gets while it counts down
    QString status{};      // what holds reminders back, or when the next one comes
    std::vector<PanelMenuEntry> menu{};

    friend bool operator==(const TrayContent&, const TrayContent&) = default;
};

// What a person does with it.
struct TrayActions {
    // Asked for by a click at that place, in the coordinates of the screens; (0, 0): at the
    // pointer.
    std::function<void(QPoint)> onActivate = [](QPoint) {};
    // Asked for by a middle click.
    std::function<void()> onSecondaryActivate = [] {};
    std::function<void(const PanelMenuEntry::Action&)> onChoice =
        [](const PanelMenuEntry::Action&) {};
};

}  // namespace tendel

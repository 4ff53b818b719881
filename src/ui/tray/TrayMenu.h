#pragma once

#include <QPoint>

#include <vector>

#include "ui/theme/Menu.h"
#include "ui/tray/TrayContent.h"

namespace tendel {

// The panel's menu as one of the program's own, for trays that draw none. `actions` must outlive
// it.
class TrayMenu : public Menu {
    Q_OBJECT
public:
    explicit TrayMenu(const TrayActions& actions) : actions_(actions) {}

    void show(const std::vector<PanelMenuEntry>& entries);

    // Opens one that deletes itself once it is closed.
    static void popUp(const std::vector<PanelMenuEntry>& entries, QPoint at,
                      const TrayActions& actions);

private:
    const TrayActions& actions_;
};

}  // namespace tendel

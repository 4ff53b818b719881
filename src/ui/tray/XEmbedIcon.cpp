#include "ui/tray/XEmbedIcon.h"

#include <utility>

namespace tendel {

XEmbedIcon::XEmbedIcon(const TrayActions& actions) : actions_(actions), menu_(actions) {
    icon_.setContextMenu(&menu_);
    QObject::connect(&icon_, &QSystemTrayIcon::activated, &menu_,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) actions_.onActivate({});
                         if (reason == QSystemTrayIcon::MiddleClick) actions_.onSecondaryActivate();
                     });
}

void XEmbedIcon::show(const TrayContent& content) {
    const TrayContent before = std::exchange(content_, content);
    if (content.image != before.image || !icon_.isVisible()) icon_.setIcon(content.image.icon());
    icon_.setToolTip(content.label.isEmpty() ? content.status
                                             : content.label + u'\n' + content.status);
    if (content.menu != before.menu) menu_.show(content.menu);
    icon_.show();
}

}  // namespace tendel

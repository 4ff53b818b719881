#pragma once

#include <QObject>

#include "alerts/NotchAlertController.h"
#include "platform/linux/PanelCutout.h"

class QScreen;

namespace tendel {

// The screens as Qt sees them, the built-in one with this machine's camera housing. The environment
// variable TENDEL_SIMULATE_NOTCH ("200x32") gives each of them a housing of that size instead, for
// development. Needs a QGuiApplication while it lives;
// main thread only.
class QtScreens : public QObject, public Screens {
    Q_OBJECT
public:
    QtScreens();

    std::vector<ScreenInfo> all() const override;
    // Under a Wayland session the place where the pointer was last over a window of the X server.
    std::optional<std::pair<double, double>> pointer() const override;

private:
    void watch(QScreen* screen);
    void noteChange();

    std::optional<Size> notchOf(const QScreen& screen) const;

    std::optional<Size> simulatedNotch_;
    std::optional<PanelCutout> cutout_ = panelCutout();
    bool isChangePending_ = false;
};

}  // namespace tendel

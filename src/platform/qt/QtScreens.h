#pragma once

#include <QObject>

#include "alerts/NotchAlertController.h"

class QScreen;

namespace tendel {

// The screens as Qt sees them. The environment variable TENDEL_SIMULATE_NOTCH ("200x32") gives each
// of them a camera housing of that size, for development. Needs a QGuiApplication while it lives;
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

    std::optional<Size> simulatedNotch_;
    bool isChangePending_ = false;
};

}  // namespace tendel

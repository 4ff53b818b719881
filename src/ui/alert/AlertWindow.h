#pragma once

#include <memory>

#include "alerts/NotchAlertController.h"
#include "ui/alert/AlertView.h"
#include "ui/alert/X11Overlay.h"

namespace tendel {

// The alert's window: above everything, full-screen windows included, never with the keyboard, and
// there for the pointer only where the alert is. It is unmapped while the alert is hidden. Main
// thread only; what it is given must outlive it.
class AlertWindow : public AlertPanel {
public:
    AlertWindow(NotchAlertModel& model, const NotchAlertActions& actions, EventLoop& loop);

    void show(const Rect& frame, const NotchAlertGeometry& geometry) override;
    void hide() override;

private:
    void setShape(const AlertOutline& outline);

    AlertView view_;
    std::unique_ptr<StackingWatch> stacking_;  // while the window is mapped
};

}  // namespace tendel

#pragma once

#include "alerts/NotchAlertController.h"
#include "ui/alert/AlertView.h"
#include "ui/alert/OverlayStack.h"

namespace tendel {

// The alert's window: above everything, full-screen windows included, never with the keyboard, and
// there for the pointer only where the alert is. It is unmapped while the alert is hidden. Main
// thread only; what it is given must outlive it.
class AlertWindow : public AlertPanel {
public:
    AlertWindow(NotchAlertModel& model, const NotchAlertActions& actions, EventLoop& loop,
                OverlayStack& stack);
    ~AlertWindow() override;

    void show(const Rect& frame, const NotchAlertGeometry& geometry) override;
    void hide() override;

private:
    AlertView view_;
    OverlayStack& stack_;
};

}  // namespace tendel

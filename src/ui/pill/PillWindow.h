#pragma once

#include "ui/alert/OverlayStack.h"
#include "ui/pill/PillView.h"

namespace tendel {

// The live pill's window: above everything but the alert, never with the keyboard, and there for
// the pointer only in the live area. It is unmapped while the pill is hidden. Main thread only;
// what it is given must outlive it.
class PillWindow : public LivePanel {
public:
    PillWindow(NotchLiveController& live, EventLoop& loop, OverlayStack& stack);
    ~PillWindow() override;

    void show(const Rect& frame, const NotchLiveGeometry& geometry) override;
    void setLiveArea(const Rect& area) override;
    void hide() override;

private:
    void cutOut();

    PillView view_;
    OverlayStack& stack_;
    Rect liveArea_;  // in the coordinates of the screens
};

}  // namespace tendel

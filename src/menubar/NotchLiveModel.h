#pragma once

#include <functional>
#include <optional>
#include <string>

#include "alerts/NotchAlertMotion.h"
#include "base/Signal.h"
#include "base/Timer.h"
#include "menubar/LiveActivity.h"
#include "menubar/NotchLiveGeometry.h"

namespace tendel {

// The state of the pill beside the notch: its phase, what it shows, and the time that is left,
// which is kept only while it can be seen. The view draws it: at every `changed` it moves from what
// it shows towards the new state along the curve given (absent: at once). Main thread only.
class NotchLiveModel {
public:
    // What changes as time passes.
    struct Time {
        std::string text;  // the pill's, or the card's while that is open
        double ring = 0;   // 1 is full, 0 is empty
        friend bool operator==(const Time&, const Time&) = default;
    };

    explicit NotchLiveModel(EventLoop& loop);

    // Shows it: in place when something is shown, else the pill grows out of the notch.
    void show(LiveActivity activity);
    // Shrinks into the notch; nothing when it is hidden or about to be.
    void hide();
    // From the pill, and back to it.
    void openCard();
    void closeCard();
    // An alert covers it: the card closes, and nothing is kept up to date below.
    void setCovered(bool isCovered);

    const std::optional<LiveActivity>& activity() const { return activity_; }
    NotchLivePhase phase() const { return phase_; }
    // The text and buttons of the phase are visible.
    bool showsContent() const { return showsContent_; }
    bool isCovered() const { return isCovered_; }
    const Time& time() const { return time_; }

    bool reduceMotion = false;
    double speed = 1;  // every wait and curve is divided by it

    std::function<void()> onHidden = [] {};  // it has shrunk away
    // Anything above but the time changed; the curve to move along.
    Signal<std::optional<MotionCurve>> changed;
    Signal<> timeChanged;

private:
    void moveTo(NotchLivePhase phase, const MotionCurve& curve);
    void after(double seconds, std::function<void()> step);
    void emit(const MotionCurve& curve);
    void tick();

    EventLoop& loop_;
    std::optional<LiveActivity> activity_;
    NotchLivePhase phase_ = NotchLivePhase::hidden;
    bool showsContent_ = false;
    bool isCovered_ = false;
    Time time_;
    Timer transition_{loop_};
    Timer ticker_{loop_};
    Subscription clockChanged_;  // last member: goes first
};

}  // namespace tendel

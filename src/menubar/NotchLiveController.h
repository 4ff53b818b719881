#pragma once

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "alerts/NotchAlertController.h"
#include "menubar/NotchLiveModel.h"

namespace tendel {

// The window in which the pill and its card are drawn. It never takes the keyboard, and lets the
// mouse through to what is below everywhere but in its live area.
class LivePanel {
public:
    virtual ~LivePanel() = default;
    // Puts the panel there, above everything but the alert, and maps it if it is not.
    virtual void show(const Rect& frame, const NotchLiveGeometry& geometry) = 0;
    // The part that is there for the mouse, in the coordinates of the screens.
    virtual void setLiveArea(const Rect& area) = 0;
    // Takes it off the screen; nothing is drawn any more.
    virtual void hide() = 0;
};

// Decides which of the things that run is shown beside the notch, and opens its card under the
// pointer. Main thread only; what it is given must outlive it.
class NotchLiveController : public BreakPill {
public:
    using Source = LiveActivity::Source;

    // `isFullScreen`: whether an application covers that screen.
    NotchLiveController(const AppSettings& settings, EventLoop& loop, Screens& screens,
                        std::function<bool(const ScreenInfo&)> isFullScreen);

    // What this source runs now, or nothing any more.
    void update(std::optional<LiveActivity> activity, Source source);
    // Whether the settings let the source use the notch.
    bool shows(Source source) const;
    // Whether it can be shown on this screen now; on whichever screen has the notch.
    bool canShow(Source source, const ScreenInfo& screen) const;
    bool canShow(Source source) const;
    std::optional<Source> showing() const { return showing_; }

    // Looks again; to be told when a screen may be covered by an application now, or no longer.
    void fullScreenDidChange() { refresh(); }
    // To be told when the alert's phase changes: it covers the pill from the moment it grows.
    void alertDidChange(const NotchAlertController& alerts);

    bool canShowBreak(const ScreenInfo& screen) const override {
        return canShow(Source::microBreak, screen);
    }
    bool hasScreen() const override { return notchScreen().has_value(); }
    std::optional<double> restingWidth(const ScreenInfo& screen) const override;
    void showBreak(const NotchAlertContent& content) override;
    void endBreak(const std::optional<std::string>& completionMessage) override;

    // What the view tells. The pointer is in the coordinates of the screens, absent once it left.
    void pointerMoved(std::optional<std::pair<double, double>> position);
    void clicked();
    void press(LiveActivity::Control control);

    NotchLiveModel& model() { return model_; }
    const NotchLiveGeometry& geometry() const { return geometry_; }

    LivePanel* panel = nullptr;  // not owned; set before the first update
    std::function<void(LiveActivity::Control)> onControl = [](LiveActivity::Control) {};
    std::function<void(Source)> onOpen = [](Source) {};  // the app's own view of it is wanted
    std::function<void()> onShowingChange = [] {};
    // What can be shown, or is, may have changed.
    Signal<> changed;

private:
    std::optional<ScreenInfo> notchScreen() const;
    std::optional<Source> chosen() const;
    void refresh();
    void place(const std::optional<ScreenInfo>& screen);
    void updateCover();
    void setLiveArea();
    void updateHover();

    const AppSettings& settings_;
    EventLoop& loop_;
    Screens& screens_;
    std::function<bool(const ScreenInfo&)> isFullScreen_;

    std::map<Source, LiveActivity> activities_;
    std::optional<Source> showing_;
    NotchLiveModel model_{loop_};
    NotchLiveGeometry geometry_;
    std::optional<ScreenInfo> screen_;       // where the panel is
    std::optional<ScreenInfo> alertScreen_;  // where an alert is up
    std::optional<std::pair<double, double>> pointer_;
    MonotonicInstant pressableFrom_{};
    Timer hoverTask_{loop_};
    Timer farewell_{loop_};
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

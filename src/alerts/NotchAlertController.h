#pragma once

#include <functional>
#include <optional>
#include <string_view>
#include <vector>

#include "alerts/AlertQueue.h"
#include "alerts/NotchAlertGeometry.h"
#include "alerts/NotchAlertModel.h"
#include "base/Calendar.h"
#include "base/Timer.h"
#include "focus/SystemSounds.h"
#include "model/Presence.h"
#include "reminders/ReminderScheduler.h"
#include "storage/AppSettings.h"
#include "storage/Store.h"

namespace tendel {

// The screens of the desktop and the pointer, as the platform tells them.
class Screens {
public:
    virtual ~Screens() = default;
    // At least one, the main screen first; empty only while the desktop has none.
    virtual std::vector<ScreenInfo> all() const = 0;
    // In the same coordinates as the frames; nothing where the platform would not tell.
    virtual std::optional<std::pair<double, double>> pointer() const = 0;
    Signal<> changed;  // screens came, went or moved
};

// The window in which the alert is drawn. It never takes the keyboard.
class AlertPanel {
public:
    virtual ~AlertPanel() = default;
    // Puts the panel there, above everything, and maps it if it is not.
    virtual void show(const Rect& frame, const NotchAlertGeometry& geometry) = 0;
    // Takes it off the screen; nothing is drawn any more.
    virtual void hide() = 0;
};

// Where a running break can go on when the alert tucks in: the pill beside the notch.
class BreakPill {
public:
    virtual ~BreakPill() = default;
    // Whether a break that runs on this screen can move into it now.
    virtual bool canShowBreak(const ScreenInfo& screen) const = 0;
    // Whether it has a screen at all; what it shows may be hidden there for a while.
    virtual bool hasScreen() const = 0;
    // Its width while it rests on this screen, for the alert to grow out of.
    virtual std::optional<double> restingWidth(const ScreenInfo& screen) const = 0;
    virtual void showBreak(const NotchAlertContent& content) = 0;
    virtual void endBreak(const std::optional<std::string>& completionMessage) = 0;
};

// Screen whose frame contains the pointer, else the main one; nothing when there is no screen.
std::optional<ScreenInfo> activeScreen(const Screens& screens);

// Takes due alerts, shows them one at a time at the top of the active screen, and turns the user's
// answers, the auto-hide and the timed break into history. Main thread only; what it is given must
// outlive it.
class NotchAlertController : public ReminderAlertPresenting, public FocusAlertPresenting {
public:
    NotchAlertController(AppSettings& settings, Store& store, EventLoop& loop,
                         const Calendar& calendar, ReminderScheduler& scheduler, Screens& screens,
                         SystemSounds& sounds);

    void present(const Upcoming& upcoming) override;
    void dismissAll() override;
    // The user is in a call or presents, or has left: alerts go back to the scheduler, which keeps
    // them. A break that runs stays.
    void userGotBusy(Presence busy);
    void userWentAway();
    // An announcement that speaks of an earlier phase than this one gives way to it.
    void presentFocusAlert(const FocusAlert& alert) override;
    void removeFocusAlerts() override;
    // A preview from the settings; records nothing.
    void presentSample(const Upcoming::Item& sample);
    // The pill came, went or moved: an alert that is up tucks into what rests there now.
    void liveDidChange();

    NotchAlertModel& model() { return model_; }
    const NotchAlertActions& actions() const { return actions_; }
    const AlertQueue& queue() const { return queue_; }
    const NotchAlertGeometry& geometry() const { return geometry_; }
    // Whether an alert is on the screen or grows out of it; not while it tucks in.
    bool isUp() const { return model_.phase() != NotchAlertPhase::hidden; }
    // The one that the alert was last shown on.
    const std::optional<ScreenInfo>& screen() const { return screen_; }

    AlertPanel* panel = nullptr;  // not owned; without one the alert runs unseen
    BreakPill* pill = nullptr;    // not owned; absent where there is no live pill
    std::function<void(FocusAlertAction)> onFocusAction = [](FocusAlertAction) {};

private:
    void enqueue(std::vector<AlertQueue::Entry> entries);
    void waitingChanged();
    // Gives every reminder alert but a running break to `keep`; focus alerts and samples go.
    void handBack(const std::function<void(const AlertQueue::Entry&, const Upcoming::Item&)>& keep);
    // Ends the current alert without an outcome and tucks in, or shows the next.
    void takeDown();
    void withdrawCurrent();
    void stopCurrent(const std::optional<std::string>& message = std::nullopt);

    bool isAnswerable() const;
    void answer(Outcome outcome, std::string_view message = {});
    void answerFocus(FocusAlertAction action);
    void skipAll();
    void resolve(Outcome outcome, std::string_view message);
    void record(std::span<const AlertQueue::Entry> entries, Outcome outcome);
    void expireStale();

    // Shows what is next, or tucks in; after the check mark when there is something to celebrate.
    void showNext(const std::optional<std::string>& celebration = std::nullopt);
    void place();
    NotchAlertContent contentOf(const AlertQueue::Entry& entry) const;
    void refreshContent();

    void startAutoHide();
    void scheduleTick();
    void tickAutoHide();

    void startBreak();
    void watchBreak();
    bool canMoveBreak() const;
    void moveBreakIntoPill();
    void endBreak();

    void refreshFromStore();
    void screensChanged();
    void wallClockChanged();

    AppSettings& settings_;
    Store& store_;
    EventLoop& loop_;
    const Calendar& calendar_;
    ReminderScheduler& scheduler_;
    Screens& screens_;
    SystemSounds& sounds_;

    NotchAlertModel model_{loop_};
    NotchAlertActions actions_;
    NotchAlertGeometry geometry_;
    std::optional<ScreenInfo> screen_;
    AlertQueue queue_;
    MonotonicInstant answerableFrom_{};
    std::optional<Duration> autoHideLeft_;  // absent: it stays until it is answered
    MonotonicInstant breakEnd_{};           // the wall clock's `breakEndsAt` follows it
    bool isBreakInPill_ = false;
    bool isRecording_ = false;
    Timer autoHide_{loop_};
    Timer breakTimer_{loop_};
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

#pragma once

#include <functional>
#include <optional>
#include <string>

#include "alerts/AlertQueue.h"
#include "alerts/NotchAlertGeometry.h"
#include "alerts/NotchAlertMotion.h"
#include "base/Signal.h"
#include "base/Timer.h"

namespace tendel {

// What the alert shows.
struct NotchAlertContent {
    enum class Style { reminder, focusEnded, breakEnded };

    AlertId id{};  // the queue entry's
    std::string title{};
    std::string detail{};
    std::string systemImage{};
    std::optional<ExerciseAnimation> animation{};
    ReminderKind kind = ReminderKind::work;  // chooses the accent
    int queuedCount = 0;                     // how many alerts wait behind this one
    int snoozeMinutes = 5;
    std::optional<int> durationSeconds{};
    std::optional<Instant> breakEndsAt{};
    std::optional<std::string> notice{};
    bool offersHadBreak = false;
    bool canHideInPill = false;
    Style style = Style::reminder;

    friend bool operator==(const NotchAlertContent&, const NotchAlertContent&) = default;
};

// The answers that the view can give.
struct NotchAlertActions {
    std::function<void()> done = [] {};
    std::function<void()> start = [] {};  // the timed break
    std::function<void()> snooze = [] {};
    std::function<void()> skip = [] {};
    std::function<void()> skipAll = [] {};
    std::function<void()> hadBreak = [] {};
    std::function<void()> hideInPill = [] {};
    std::function<void(FocusAlertAction)> focus = [](FocusAlertAction) {};
};

// The state of the one alert that grows out of the top of the screen: its phase, what it shows, and
// the sequence that runs. The view draws it: at every `changed` it moves from what it shows towards
// the new state along the curve given (absent: at once). Main thread only.
class NotchAlertModel {
public:
    explicit NotchAlertModel(EventLoop& loop) : loop_(loop) {}

    // Shows `content`: in place when the alert is open, else it grows out.
    void present(NotchAlertContent content);
    // Shows the check mark with `message`, then `next`, or tucks in.
    void complete(std::optional<NotchAlertContent> next, std::string message);
    void celebrate(std::optional<NotchAlertContent> next) {
        complete(std::move(next), "Nice work!");
    }
    // Tucks in; nothing when it is hidden or about to be.
    void dismiss();
    // Rewrites what is shown (or comes after the check mark) without any motion, when it is the
    // same alert's.
    void refresh(const NotchAlertContent& content);
    void setQueuedCount(int count);
    void setHovered(bool isHovered);

    NotchAlertPhase phase() const { return phase_; }
    bool showsContent() const { return showsContent_; }
    bool showsCompletion() const { return showsCompletion_; }
    const std::optional<NotchAlertContent>& content() const { return content_; }
    const std::string& completionMessage() const { return completionMessage_; }
    bool isHovered() const { return isHovered_; }
    // Fully open with its buttons: only then it counts down and celebrates.
    bool isInteractive() const {
        return phase_ == NotchAlertPhase::expanded && showsContent_ && !showsCompletion_;
    }
    // Whether nothing is on the screen and nothing is on its way.
    bool isHidden() const { return phase_ == NotchAlertPhase::hidden && !transition_.isRunning(); }

    // Set by the controller before it presents.
    bool reduceMotion = false;
    bool hasNotch = false;
    AlertStyle style = AlertStyle::full;
    double speed = 1;  // every wait and curve is divided by it
    std::optional<double> restingWidth;

    std::function<void()> onHidden = [] {};  // a collapse has finished
    // Something above changed; the curve to move along.
    Signal<std::optional<MotionCurve>> changed;

private:
    bool isOpen() const;
    void expand();
    void collapse();
    void hide(const MotionCurve& curve);
    void after(double seconds, std::function<void()> step);
    // `curve`, or the quiet one where motion is to be reduced.
    void emit(const MotionCurve& curve);

    EventLoop& loop_;
    NotchAlertPhase phase_ = NotchAlertPhase::hidden;
    bool showsContent_ = false;
    bool showsCompletion_ = false;
    std::optional<NotchAlertContent> content_;
    std::string completionMessage_;
    std::optional<NotchAlertContent> next_;  // comes after the check mark
    bool isHovered_ = false;
    Timer transition_{loop_};
};

}  // namespace tendel

#pragma once

#include <QObject>
#include <QPointer>

#include <functional>
#include <optional>

#include "base/Timer.h"
#include "focus/FocusSession.h"

class QWidget;
class QWindow;

namespace tendel {

// What is left of a session's phase, for one widget that shows it. Wakes up when the number that
// is shown changes, and only while the widget is really on the screen.
class FocusCountdown : public QObject {
    Q_OBJECT
public:
    enum class Precision {
        seconds,
        minutes,  // until the last minute, of which the seconds count
    };

    // `changed` runs when another number is to be shown.
    FocusCountdown(EventLoop& loop, QWidget& shown, Precision precision,
                   std::function<void()> changed);

    // Without `changed`.
    void setSession(const std::optional<FocusSession>& session);
    // Whole seconds, rounded up, as of the last wake-up; 0 without a phase.
    int seconds() const { return seconds_; }
    bool isTicking() const { return tick_.isRunning(); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int secondsLeft() const;
    bool isOnScreen() const;
    void watchWindow();
    void look();
    void schedule();

    EventLoop& loop_;
    QWidget& shown_;
    Precision precision_;
    std::function<void()> changed_;
    QPointer<QWindow> window_;
    std::optional<FocusSession> session_;
    int seconds_ = 0;
    Timer tick_{loop_};
    Subscription clockChanged_;  // last member: goes first
};

}  // namespace tendel

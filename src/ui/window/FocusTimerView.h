#pragma once

#include <QWidget>

#include <vector>

#include "base/Calendar.h"
#include "focus/FocusTimer.h"
#include "ui/window/FocusCountdown.h"
#include "ui/window/FocusRing.h"

namespace tendel {

class Button;
class Label;
class RoundDots;

// The focus timer: its ring, the rounds, what comes next, and what can be done in this phase.
class FocusTimerView : public QWidget {
    Q_OBJECT
public:
    // What it shows and steers; all of it must outlive the widget.
    struct Services {
        FocusTimer& timer;
        AppSettings& settings;
        EventLoop& loop;
        const Calendar& calendar;
        std::function<bool()> reducesMotion;
    };

    explicit FocusTimerView(Services services, QWidget* parent = nullptr);

    // Starts, pauses, resumes or begins the next round: what the large button does.
    void goOn();
    QWidget* firstFocus() const;

private:
    void refresh(FocusRing::Change change);
    void refreshRing(const FocusSession& session, FocusRing::Change change);
    void refreshButtons(const FocusSession& session);

    Services services_;
    FocusRing* ring_;
    RoundDots* dots_;
    Label* next_;
    Button* primary_;
    Button* extend_;
    Button* skip_;
    Button* stop_;
    FocusCountdown countdown_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

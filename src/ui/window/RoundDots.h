#pragma once

#include <QWidget>

#include "focus/FocusSession.h"
#include "ui/theme/Theme.h"

namespace tendel {

// The rounds of a session as dots: filled ones are over, the one with a ring runs. With long breaks
// they go up to the next one, a bar at the end. Only to be looked at; the words beside it say the
// same.
class RoundDots : public QWidget {
    Q_OBJECT
public:
    explicit RoundDots(QWidget* parent = nullptr);

    struct State {
        int dots = 0;
        int done = 0;
        bool isRunning = false;  // the dot after those that are done
        bool hasLongBreak = false;
        bool isLongBreak = false;  // it runs now

        friend bool operator==(const State&, const State&) = default;
    };
    // Without a session of `isStarted`, all are to come.
    static State stateOf(const FocusSession& session, bool isStarted);
    void setState(const State& state);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    State state_;
};

}  // namespace tendel

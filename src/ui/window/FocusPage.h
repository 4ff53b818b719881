#pragma once

#include <QWidget>

#include "ui/window/FocusTimerView.h"
#include "ui/window/SoundMixView.h"

namespace tendel {

class SlimScrollArea;

// The focus timer with its sounds and its plan.
class FocusPage : public QWidget {
    Q_OBJECT
public:
    FocusPage(FocusTimerView::Services timer, FocusSoundController& sounds,
              QWidget* parent = nullptr);

    // Where the keyboard starts on this page.
    QWidget* firstFocus() const { return timer_->firstFocus(); }

protected:
    void showEvent(QShowEvent* event) override;
    // Space starts and pauses wherever the keyboard is on something that does not use it.
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    FocusTimerView* timer_;
    SoundMixView* mix_;
    SlimScrollArea* scroll_;
};

}  // namespace tendel

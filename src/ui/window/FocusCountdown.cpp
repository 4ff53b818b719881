#include "ui/window/FocusCountdown.h"

#include <QEvent>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <cmath>

namespace tendel {

FocusCountdown::FocusCountdown(EventLoop& loop, QWidget& shown, Precision precision,
                               std::function<void()> changed)
    : QObject(&shown),
      loop_(loop),
      shown_(shown),
      precision_(precision),
      changed_(std::move(changed)),
      clockChanged_(loop.wallClockChanged.connect([this] { look(); })) {
    shown_.installEventFilter(this);
}

void FocusCountdown::setSession(const std::optional<FocusSession>& session) {
    session_ = session;
    seconds_ = secondsLeft();
    schedule();
}

int FocusCountdown::secondsLeft() const {
    if (!session_) return 0;
    // Never more than the phase's length, also when the clock was set back.
    return static_cast<int>(
        std::ceil(std::min(session_->remaining(loop_.now()), session_->phaseDuration)));
}

bool FocusCountdown::isOnScreen() const {
    return shown_.isVisible() && window_ && window_->isExposed();
}

// A window that is minimised or on another desktop is visible to its widgets, but not exposed.
void FocusCountdown::watchWindow() {
    QWindow* window = shown_.window()->windowHandle();
    if (window == window_) return;
    if (window_) window_->removeEventFilter(this);
    window_ = window;
    if (window_) window_->installEventFilter(this);
}

bool FocusCountdown::eventFilter(QObject* watched, QEvent* event) {
    const bool isOfWidget = watched == &shown_;
    if (isOfWidget && event->type() == QEvent::Show) watchWindow();
    if ((isOfWidget && (event->type() == QEvent::Show || event->type() == QEvent::Hide)) ||
        (!isOfWidget && event->type() == QEvent::Expose))
        // Once the window and the widget know it themselves.
        QMetaObject::invokeMethod(this, &FocusCountdown::look, Qt::QueuedConnection);
    return QObject::eventFilter(watched, event);
}

void FocusCountdown::look() {
    const int before = std::exchange(seconds_, secondsLeft());
    schedule();
    if (seconds_ != before) changed_();
}

void FocusCountdown::schedule() {
    tick_.stop();
    if (!session_ || !session_->endsAt || seconds_ == 0 || !isOnScreen()) return;
    // Back from the end, so that each number changes on time.
    int next = seconds_ - 1;
    if (precision_ == Precision::minutes && seconds_ > 60) next = (seconds_ - 1) / 60 * 60;
    const Duration until = *session_->endsAt - loop_.now() - std::chrono::seconds(next);
    tick_.start(until, [this] { look(); });
}

}  // namespace tendel

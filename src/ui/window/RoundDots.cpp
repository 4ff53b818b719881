#include "ui/window/RoundDots.h"

#include <QPainter>

#include <algorithm>

#include "ui/window/FocusLook.h"

namespace tendel {

namespace {
constexpr double dotSize = 8;
constexpr double gap = 8;
constexpr double barWidth = 20;
constexpr int mostDots = 8;
}  // namespace

RoundDots::RoundDots(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

RoundDots::State RoundDots::stateOf(const FocusSession& session, bool isStarted) {
    using Phase = FocusSession::Phase;
    State state;
    state.isRunning = isStarted && session.phase == Phase::focus;
    const int over = session.round - (isStarted && session.phase != Phase::focus ? 0 : 1);
    state.hasLongBreak = hasLongBreaks(session.plan);
    state.isLongBreak = session.phase == Phase::longBreak;
    if (state.hasLongBreak) {
        const int cycle = std::clamp(*session.plan.longBreakEvery, 1, mostDots);
        state.dots = cycle;
        state.done = state.isLongBreak ? cycle : over % cycle;
    } else {
        // As many as there were, and the one that runs or comes next; the latest where they are
        // many.
        state.dots = std::min(over + 1, mostDots);
        state.done = state.dots - 1;
    }
    return state;
}

void RoundDots::setState(const State& state) {
    if (state == state_) return;
    state_ = state;
    update();
}

QSize RoundDots::sizeHint() const {
    return {0, 16};
}

void RoundDots::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor open = theme.color(Theme::Color::text);
    open.setAlphaF(theme.isDark() ? 0.24F : 0.18F);
    const QColor focus = theme.color(Theme::Color::focusAccent);
    double length = state_.dots * (dotSize + gap) - gap;
    if (state_.hasLongBreak) length += gap + barWidth;
    double x = (width() - length) / 2;
    const double y = height() / 2.0;
    for (int i = 0; i < state_.dots; ++i) {
        const QRectF dot(x, y - dotSize / 2, dotSize, dotSize);
        painter.setPen(Qt::NoPen);
        painter.setBrush(i < state_.done ? focus : open);
        if (i == state_.done && state_.isRunning) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(focus, 2));
            painter.drawEllipse(dot);
        } else {
            painter.drawEllipse(dot);
        }
        x += dotSize + gap;
    }
    if (!state_.hasLongBreak) return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(state_.isLongBreak ? theme.color(Theme::Color::good) : open);
    painter.drawRoundedRect(QRectF(x, y - dotSize / 2, barWidth, dotSize), dotSize / 2,
                            dotSize / 2);
}

}  // namespace tendel

#pragma once

#include <QColor>
#include <QPainterPath>
#include <QWidget>

#include <optional>

#include "base/Timer.h"

namespace tendel {

// The time that is left of a break, with a ring that empties. Wakes up and repaints itself once a
// second, only while it is visible.
class AlertCountdown : public QWidget {
    Q_OBJECT
public:
    AlertCountdown(EventLoop& loop, QWidget* parent);

    // A break of `seconds` that ends at `end`; the ring has the colour `accent`.
    void set(Instant end, int seconds, const QColor& accent);
    // What of it shows: how opaque (0–1), and the alert's outline in its own coordinates.
    void setShown(double opacity, const QPainterPath& clip);

    QSize sizeHint() const override;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void tick();
    QFont textFont() const;

    EventLoop& loop_;
    Instant end_;
    int length_ = 0;
    int left_ = 0;  // seconds that are shown
    QColor accent_;
    double opacity_ = 1;
    QPainterPath clip_;
    Timer tick_{loop_};
};

// Whole seconds as "0:20", "12:05", "1:00:00".
QString countdownText(int seconds);

}  // namespace tendel

#include "ui/alert/AlertCountdown.h"

#include <QPainter>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "ui/alert/AlertMarks.h"
#include "ui/theme/TabularText.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

constexpr double ringSize = 24;
constexpr double ringWidth = 3;
constexpr double gap = 10;

}  // namespace

QString countdownText(int seconds) {
    const auto two = [](int value) {
        return QStringLiteral("%1").arg(value, 2, 10, QLatin1Char('0'));
    };
    const int minutes = seconds / 60;
    if (minutes < 60) return QString::number(minutes) + QLatin1Char(':') + two(seconds % 60);
    return QString::number(minutes / 60) + QLatin1Char(':') + two(minutes % 60) + QLatin1Char(':') +
           two(seconds % 60);
}

AlertCountdown::AlertCountdown(EventLoop& loop, QWidget* parent) : QWidget(parent), loop_(loop) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void AlertCountdown::set(Instant end, int seconds, const QColor& accent) {
    end_ = end;
    length_ = std::max(seconds, 1);
    accent_ = accent;
    tick();
    update();
}

void AlertCountdown::setShown(double opacity, const QPainterPath& clip) {
    opacity_ = opacity;
    clip_ = clip;
    update();
}

void AlertCountdown::showEvent(QShowEvent*) {
    tick();
}

void AlertCountdown::hideEvent(QHideEvent*) {
    tick_.stop();
}

void AlertCountdown::tick() {
    using namespace std::chrono;
    const Duration left = std::max(end_ - loop_.now(), Duration::zero());
    // Never more than its length, also when the clock was set back.
    const int shown = std::min(static_cast<int>(ceil<std::chrono::seconds>(left).count()), length_);
    if (shown != left_) {
        left_ = shown;
        setAccessibleName(countdownText(left_) + QStringLiteral(" left"));
        update();
    }
    tick_.stop();
    if (left_ == 0 || !isVisible()) return;
    tick_.start(left - std::chrono::seconds(left_ - 1), [this] { tick(); });
}

QFont AlertCountdown::textFont() const {
    return Theme::instance().font(Theme::Type::section, true);
}

QSize AlertCountdown::sizeHint() const {
    const double text = tabularWidth(textFont(), countdownText(length_));
    return {static_cast<int>(std::ceil(ringSize + gap + text)), 32};
}

void AlertCountdown::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setClipPath(clip_);
    painter.setOpacity(opacity_);

    drawRing(painter, QRectF(0, (height() - ringSize) / 2, ringSize, ringSize), ringWidth, accent_,
             double(left_) / length_);

    painter.setFont(textFont());
    painter.setPen(Qt::white);
    drawTabular(painter, QRectF(ringSize + gap, 0, width() - ringSize - gap, height()),
                Qt::AlignLeft | Qt::AlignVCenter, countdownText(left_));
}

}  // namespace tendel

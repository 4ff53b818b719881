#include "ui/theme/Slider.h"

#include <QFocusEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>

#include <algorithm>
#include <chrono>
#include <cmath>

#include "ui/theme/PaintedButton.h"

namespace tendel {

namespace {
constexpr int sliderHeight = 28;
constexpr double trackHeight = 4;
constexpr double knobSize = 16;
constexpr auto pace = std::chrono::milliseconds(100);
}  // namespace

Slider::Slider(const QString& name, QWidget* parent) : QAbstractSlider(parent) {
    setAccessibleName(name);
    setOrientation(Qt::Horizontal);
    setRange(0, 100);
    setSingleStep(5);
    setPageStep(20);
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    pace_.setSingleShot(true);
    pace_.setInterval(pace);
    connect(&pace_, &QTimer::timeout, this, [this] {
        if (isUntold_) tell();
    });
}

void Slider::setLevel(int percent) {
    if (isSliderDown()) return;  // it is where the person holds it
    const QScopedValueRollback setting(isBeingSet_, true);
    setValue(percent);
}

void Slider::setAccent(Theme::Color role) {
    if (role == accent_) return;
    accent_ = role;
    update();
}

void Slider::setQuiet(bool isQuiet) {
    if (isQuiet == isQuiet_) return;
    isQuiet_ = isQuiet;
    update();
}

QSize Slider::sizeHint() const {
    return {160, sliderHeight};
}

QSize Slider::minimumSizeHint() const {
    return {72, sliderHeight};
}

// Also what assistive technology and the keys do comes by here.
void Slider::sliderChange(SliderChange change) {
    QAbstractSlider::sliderChange(change);
    if (change != SliderValueChange || isBeingSet_) return;
    isUntold_ = true;
    if (!pace_.isActive()) tell();
}

void Slider::tell() {
    isUntold_ = false;
    pace_.start();
    Q_EMIT moved(value());
}

QRectF Slider::track() const {
    const double inset = focusMargin + knobSize / 2;
    return {inset, (height() - trackHeight) / 2.0, width() - 2 * inset, trackHeight};
}

int Slider::levelAt(double x) const {
    const QRectF along = track();
    double part = std::clamp((x - along.left()) / along.width(), 0.0, 1.0);
    if (layoutDirection() == Qt::RightToLeft) part = 1 - part;
    return static_cast<int>(std::lround(100 * part));
}

void Slider::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    setSliderDown(true);
    setSliderPosition(levelAt(event->position().x()));
    update();
}

void Slider::mouseMoveEvent(QMouseEvent* event) {
    if (!isSliderDown()) return event->ignore();
    setSliderPosition(levelAt(event->position().x()));
}

void Slider::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return event->ignore();
    setSliderDown(false);
    if (isUntold_) tell();
    update();
}

void Slider::wheelEvent(QWheelEvent* event) {
    event->ignore();
}

void Slider::keyPressEvent(QKeyEvent* event) {
    isFocusShown_ = true;
    update();
    QAbstractSlider::keyPressEvent(event);
}

void Slider::focusInEvent(QFocusEvent* event) {
    if (event->reason() != Qt::ActiveWindowFocusReason)
        isFocusShown_ = isShownFocus(event->reason());
    QAbstractSlider::focusInEvent(event);
}

void Slider::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!isEnabled()) painter.setOpacity(0.45);
    const bool showsFocus = hasFocus() && isFocusShown_;
    const bool isFaint = isQuiet_ && !underMouse() && !showsFocus && !isSliderDown();

    const QRectF along = track();
    double part = value() / 100.0;
    const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
    if (!isLeftToRight) part = 1 - part;
    const QPointF at(along.left() + along.width() * part, along.center().y());
    QColor ground = theme.color(Theme::Color::text);
    ground.setAlphaF(isFaint ? 0.08F : theme.isDark() ? 0.22F : 0.14F);
    painter.setBrush(ground);
    painter.drawRoundedRect(along, trackHeight / 2, trackHeight / 2);
    QRectF filled = along;
    if (isLeftToRight)
        filled.setRight(at.x());
    else
        filled.setLeft(at.x());
    QColor fill = theme.color(isQuiet_ ? Theme::Color::faint : accent_);
    if (isFaint) fill.setAlphaF(0.4F);
    painter.setBrush(fill);
    if (value() > 0) painter.drawRoundedRect(filled, trackHeight / 2, trackHeight / 2);
    if (isFaint) return;

    QRectF knob(0, 0, knobSize, knobSize);
    knob.moveCenter(at);
    painter.setBrush(QColor(0, 0, 0, 28));
    painter.drawEllipse(knob.translated(0, 0.75));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
    drawHairline(painter, knob, knobSize / 2, QColor(0, 0, 0, 56));
    if (showsFocus) drawFocusRing(painter, knob, knobSize / 2);
}

}  // namespace tendel

#include "ui/window/FocusRing.h"

#include <QPainter>

#include <algorithm>
#include <cmath>
#include <numbers>

#include "focus/FocusWords.h"
#include "ui/theme/Accessible.h"
#include "ui/theme/QtText.h"
#include "ui/theme/TabularText.h"

namespace tendel {

namespace {

constexpr int ringSize = 240;
constexpr double ringWidth = 10;
constexpr int fadeTime = 200;  // milliseconds

QString clock(int seconds) {
    return toQString(clockText(seconds));
}

QFont digitsFont() {
    return Theme::instance().font(Theme::Type::clock);
}

}  // namespace

FocusRing::FocusRing(QWidget* parent) : QWidget(parent) {
    tellAs<FocusRing, QAccessible::StaticText>();
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    fade_.setStartValue(0.0);
    fade_.setEndValue(1.0);
    fade_.setDuration(fadeTime);
    connect(&fade_, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
    connect(&fade_, &QVariantAnimation::finished, this, [this] {
        before_ = {};
        update();
    });
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

QSize FocusRing::sizeHint() const {
    return {ringSize, ringSize};
}

void FocusRing::setContent(Content content, Change change) {
    fade_.stop();
    before_ = {};
    if (change == Change::fading && isVisible()) {
        before_ = grab();
        fade_.start();
    }
    content_ = std::move(content);
    describe();
    update();
}

void FocusRing::setSeconds(int seconds) {
    const int before = std::exchange(content_.seconds, seconds);
    if (seconds == before) return;
    describe();
    update(changedDigits(clock(before), clock(seconds)));
    update(tip(before) | tip(seconds));
}

// Its name changes by the minute: a screen reader would not come to rest otherwise.
void FocusRing::describe() {
    const int minutes = (content_.seconds + 59) / 60;
    const QString time = content_.seconds > 0 ? tr(", %1 min").arg(minutes) : QString();
    const QString left = content_.isResting || time.isEmpty() ? QString() : tr(" left");
    if (const QString name = content_.title + time + left; name != accessibleName())
        setAccessibleName(name);
}

QRectF FocusRing::circle() const {
    constexpr double in = ringWidth / 2 + 1;
    QRectF box(in, in, ringSize - 2 * in, ringSize - 2 * in);
    box.moveCenter(QRectF(rect()).center());
    return box;
}

QRectF FocusRing::digitsBox() const {
    const QPointF centre = circle().center();
    constexpr double high = 48;
    return {circle().left(), centre.y() - high / 2, circle().width(), high};
}

double FocusRing::span(int seconds) const {
    if (content_.length <= 0) return 0;
    return 360 * std::clamp(seconds / content_.length, 0.0, 1.0);
}

QRect FocusRing::tip(int seconds) const {
    const double angle = (90 + span(seconds)) * std::numbers::pi / 180;
    const QPointF at =
        circle().center() + QPointF(std::cos(angle), -std::sin(angle)) * (circle().width() / 2);
    constexpr double out = ringWidth / 2 + 2;
    return QRectF(at.x() - out, at.y() - out, 2 * out, 2 * out).toAlignedRect();
}

QRect FocusRing::changedDigits(const QString& before, const QString& after) const {
    if (before.size() != after.size()) return digitsBox().toAlignedRect();
    const auto same = std::ranges::mismatch(before, after).in1 - before.begin();
    QRectF box = digitsBox();
    const double whole = tabularWidth(digitsFont(), after);
    const double left =
        box.center().x() - whole / 2 + tabularWidth(digitsFont(), after.first(same));
    box.setLeft(left - 1);
    box.setWidth(tabularWidth(digitsFont(), after.sliced(same)) + 2);
    return box.toAlignedRect();
}

void FocusRing::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (before_.isNull()) return paintContent(painter);
    const double part = fade_.currentValue().toDouble();
    painter.setOpacity(1 - part);
    painter.drawPixmap(0, 0, before_);
    painter.setOpacity(part);
    paintContent(painter);
}

void FocusRing::paintContent(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    QColor track = theme.color(Theme::Color::text);
    track.setAlphaF(theme.isDark() ? 0.12F : 0.08F);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(track, ringWidth));
    painter.drawEllipse(circle());
    constexpr double sixteenths = 16;  // Qt's unit of an arc
    const int left = static_cast<int>(std::lround(span(content_.seconds) * sixteenths));
    if (left > 0) {
        QColor color = theme.color(content_.color);
        if (content_.isResting) color.setAlphaF(0.45F);
        painter.setPen(QPen(color, ringWidth, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(circle(), 90 * 16, left);
    }

    const QRectF digits = digitsBox();
    painter.setPen(theme.color(Theme::Color::text));
    painter.setFont(digitsFont());
    drawTabular(painter, digits, Qt::AlignCenter, clock(content_.seconds));
    const auto line = [&](const QString& text, double top, Theme::Type type, bool isSemibold,
                          Theme::Color role) {
        const QRectF box(circle().left() + 40, top, circle().width() - 80, 20);
        painter.setFont(theme.font(type, isSemibold));
        painter.setPen(theme.color(role));
        painter.drawText(box, Qt::AlignCenter,
                         painter.fontMetrics().elidedText(text, Qt::ElideRight, int(box.width())));
    };
    line(content_.title, digits.top() - 26, Theme::Type::body, true,
         content_.isResting ? Theme::Color::secondary : content_.color);
    line(content_.note, digits.bottom() + 6, Theme::Type::body, false, Theme::Color::secondary);
}

}  // namespace tendel

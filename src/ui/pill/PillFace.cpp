#include "ui/pill/PillFace.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

#include "ui/alert/AlertMarks.h"
#include "ui/theme/Icons.h"
#include "ui/theme/QtText.h"
#include "ui/theme/TabularText.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

constexpr double margin = 16;  // between the card's side and what it holds
constexpr double circleSize = 40;
constexpr double topSpace = 4;  // below the notch
constexpr double rowHeight = 28;
constexpr double bottomSpace = 12;
constexpr double lineGap = 2;
constexpr double textGap = 12;

QColor colorOf(LiveActivity::Tint tint) {
    using Color = Theme::Color;
    // The pill is black whatever the desktop's scheme is.
    constexpr auto scheme = Theme::Scheme::dark;
    switch (tint) {
        case LiveActivity::Tint::work:
            return Theme::color(Color::workAccent, scheme);
        case LiveActivity::Tint::private_:
            return Theme::color(Color::privateAccent, scheme);
        case LiveActivity::Tint::focus:
            return Theme::color(Color::focusAccent, scheme);
        case LiveActivity::Tint::rest:
            return Theme::color(Color::good, scheme);
        case LiveActivity::Tint::quiet:
            break;
    }
    return Theme::color(Color::text, scheme);
}

QFont titleFont() {
    return Theme::instance().font(Theme::Type::title, true);
}

QFont timeFont() {
    return Theme::instance().font(Theme::Type::section, true);
}

QFont captionFont() {
    return Theme::instance().font(Theme::Type::caption);
}

// As large as the side of the notch has room for.
QFont shortTimeFont(const QString& text, double width) {
    QFont font = Theme::instance().font(Theme::Type::body, true);
    for (int size = 13; size >= 9; --size) {
        font.setPixelSize(size);
        if (tabularWidth(font, text) <= width) break;
    }
    return font;
}

QRectF square(const QPointF& middle, double size) {
    return {middle.x() - size / 2, middle.y() - size / 2, size, size};
}

}  // namespace

void PillFace::layOut(const LiveActivity& activity, const NotchLiveGeometry& geometry,
                      double middle, Instant now) {
    activity_ = activity;
    accent_ = colorOf(activity.tint);
    isFinished_ = isFinished(activity);
    countsDown_ = activity.remaining(now).has_value();

    const Size notch = geometry.notchSize;
    const AlertOutline pill = geometry.outline(NotchLivePhase::pill);
    const double side = (pill.width - notch.width) / 2 - pill.topRadius;
    leftSide_ = QRectF(middle - notch.width / 2 - side, 0, side, notch.height);
    rightSide_ = QRectF(middle + notch.width / 2, 0, side, notch.height);
    pillCircle_ = square(leftSide_.center(), std::min(24.0, notch.height - 6));

    const AlertOutline card = geometry.outline(NotchLivePhase::card);
    body_ = QRectF(middle - card.width / 2 + card.topRadius, notch.height,
                   card.width - 2 * card.topRadius, card.height - notch.height);
    cardCircle_ = QRectF(body_.left() + margin, body_.top() + topSpace, circleSize, circleSize);
    row_ = QRectF(body_.left() + margin, body_.bottom() - bottomSpace - rowHeight,
                  body_.width() - 2 * margin, rowHeight);

    const double status =
        countsDown_ && activity.status
            ? QFontMetricsF(captionFont()).horizontalAdvance(toQString(*activity.status))
            : 0;
    const double time = tabularWidth(timeFont(), toQString(activity.fullText(now)));
    const double timeWidth = std::ceil(std::max(time, status));
    timeBox_ = QRectF(body_.right() - margin - timeWidth, cardCircle_.top(), timeWidth, circleSize);

    const double left = cardCircle_.right() + textGap;
    const double width = timeBox_.left() - textGap - left;
    const QFontMetricsF titleMetrics(titleFont());
    const QFontMetricsF subtitleMetrics(captionFont());
    title_ = titleMetrics.elidedText(toQString(activity.title).simplified(), Qt::ElideRight, width);
    subtitle_ = subtitleMetrics.elidedText(toQString(activity.subtitle.value_or("")).simplified(),
                                           Qt::ElideRight, width);
    double height = titleMetrics.height();
    if (!subtitle_.isEmpty()) height += lineGap + subtitleMetrics.height();
    textPosition_ = QPointF(left, std::round(cardCircle_.center().y() - height / 2));
}

void PillFace::drawSymbol(QPainter& painter, const QRectF& circle, double ring, double part) const {
    if (countsDown_) drawRing(painter, circle, ring, accent_, part);
    const double size = countsDown_ ? circle.width() * 0.54 : circle.width() * 0.8;
    icons::draw(painter, activity_.systemImage, square(circle.center(), size), accent_);
}

void PillFace::drawPill(QPainter& painter, const NotchLiveModel::Time& time,
                        double checkDrawn) const {
    if (isFinished_) {
        drawCheckMark(painter, square(leftSide_.center(), 14).adjusted(-1, 2, 1, -2), 2.5,
                      checkDrawn);
        return;
    }
    drawSymbol(painter, pillCircle_, 2.5, time.ring);
    const QString text = toQString(time.text);
    painter.setFont(shortTimeFont(text, rightSide_.width() - 6));
    painter.setPen(activity_.pausedRemaining ? secondaryOnBlack : QColor(Qt::white));
    drawTabular(painter, rightSide_, Qt::AlignCenter, text);
}

void PillFace::drawCard(QPainter& painter, const NotchLiveModel::Time& time,
                        double checkDrawn) const {
    if (isFinished_) return drawCompletion(painter, checkDrawn);
    drawSymbol(painter, cardCircle_, 3, time.ring);

    const QFontMetricsF titleMetrics(titleFont());
    double y = textPosition_.y();
    painter.setFont(titleFont());
    painter.setPen(Qt::white);
    painter.drawText(QPointF(textPosition_.x(), y + titleMetrics.ascent()), title_);
    y += titleMetrics.height() + lineGap;
    painter.setFont(captionFont());
    painter.setPen(secondaryOnBlack);
    painter.drawText(QPointF(textPosition_.x(), y + QFontMetricsF(captionFont()).ascent()),
                     subtitle_);

    QRectF box = timeBox_;
    if (countsDown_ && activity_.status) {
        const QFontMetricsF statusMetrics(captionFont());
        const QString status = toQString(*activity_.status);
        box.setHeight(QFontMetricsF(timeFont()).height());
        const double height = box.height() + statusMetrics.height() - 2;
        box.moveTop(std::round(timeBox_.center().y() - height / 2));
        painter.setFont(captionFont());
        painter.drawText(QPointF(box.right() - statusMetrics.horizontalAdvance(status),
                                 box.bottom() - 2 + statusMetrics.ascent()),
                         status);
    }
    painter.setFont(timeFont());
    painter.setPen(activity_.pausedRemaining ? secondaryOnBlack : QColor(Qt::white));
    drawTabular(painter, box, Qt::AlignRight | Qt::AlignVCenter, toQString(time.text));
}

void PillFace::drawCompletion(QPainter& painter, double checkDrawn) const {
    const QFontMetricsF metrics(titleFont());
    constexpr double markHeight = 18;
    constexpr double space = 10;
    const double height = markHeight + space + metrics.capHeight();
    const double top = body_.center().y() - height / 2 - 2;
    drawCheckMark(painter, QRectF(body_.center().x() - 12, top, 24, markHeight), 3, checkDrawn);
    painter.setFont(titleFont());
    painter.setPen(Qt::white);
    const QString message =
        metrics.elidedText(toQString(activity_.title), Qt::ElideRight, body_.width() - 2 * margin);
    painter.drawText(
        QPointF(body_.center().x() - metrics.horizontalAdvance(message) / 2, top + height),
        message);
}

QRegion PillFace::timeRegion(NotchLivePhase phase) const {
    if (phase == NotchLivePhase::card)
        return QRegion(cardCircle_.toAlignedRect()) | timeBox_.toAlignedRect();
    return QRegion(pillCircle_.toAlignedRect()) | rightSide_.toAlignedRect();
}

}  // namespace tendel

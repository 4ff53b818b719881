#include "ui/alert/AlertFace.h"

#include <QFontMetricsF>
#include <QTextLayout>

#include <algorithm>
#include <cmath>

#include "ui/alert/AlertMarks.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

constexpr double margin = 16;
constexpr double circleSize = 48;
constexpr double lineGap = 2;
constexpr double noticeGap = 4;
constexpr double noticeSymbol = 12;
constexpr int mostDetails = 2;

QFont titleFont(AlertStyle style) {
    return Theme::instance().font(
        style == AlertStyle::compact ? Theme::Type::body : Theme::Type::title, true);
}

QFont detailFont() {
    QFont font = Theme::instance().font(Theme::Type::body);
    font.setPixelSize(12);
    return font;
}

QFont noticeFont() {
    return Theme::instance().font(Theme::Type::caption);
}

QFont badgeFont() {
    return Theme::instance().font(Theme::Type::caption, true);
}

QString badgeText(const NotchAlertContent& content) {
    return content.queuedCount > 99 ? QStringLiteral("99+") : QString::number(content.queuedCount);
}

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8).simplified();
}

// The text broken into lines; what does not fit on the last is elided there.
QStringList lines(const QString& text, const QFont& font, double width, int most) {
    if (text.isEmpty()) return {};
    const QFontMetricsF metrics(font);
    QStringList lines;
    QTextLayout layout(text, font);
    layout.beginLayout();
    while (lines.size() < most) {
        QTextLine line = layout.createLine();
        if (!line.isValid()) break;
        line.setLineWidth(width);
        const bool isLast = lines.size() + 1 == most;
        lines.append(isLast ? metrics.elidedText(text.mid(line.textStart()), Qt::ElideRight, width)
                            : text.mid(line.textStart(), line.textLength()).trimmed());
    }
    layout.endLayout();
    return lines;
}

void drawLine(QPainter& painter, const QFont& font, const QColor& color, double x, double& y,
              const QString& line) {
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(QPointF(x, y + metrics.ascent()), line);
    y += metrics.height();
}

}  // namespace

QColor alertAccent(const NotchAlertContent& content) {
    // The alert is black whatever the desktop's scheme is.
    if (content.style != NotchAlertContent::Style::reminder)
        return Theme::color(Theme::Color::focusAccent, Theme::Scheme::dark);
    return Theme::accent(content.kind, Theme::Scheme::dark);
}

void AlertFace::layOut(const NotchAlertContent& content, AlertStyle style, const QRectF& body,
                       double textRight) {
    content_ = content;
    style_ = style;
    accent_ = alertAccent(content);
    symbol_ = content_.animation ? icons::symbolOf(*content_.animation)
                                 : std::string_view(content_.systemImage);
    if (style == AlertStyle::compact)
        layOutCompact(body, textRight);
    else
        layOutFull(body);
}

void AlertFace::layOutFull(const QRectF& body) {
    constexpr double symbolSize = 28;
    constexpr double top = 14;
    circle_ = QRectF(body.left() + margin, body.top() + top + 2, circleSize, circleSize);
    symbolBox_ = QRectF(0, 0, symbolSize, symbolSize);
    symbolBox_.moveCenter(circle_.center());
    badge_ = QRectF(QPointF(), badgeSize());
    badge_.moveCenter(circle_.center() + QPointF(17, -17));  // on the rim at half past one

    const double left = circle_.right() + 12;
    const double width = body.right() - margin - left;
    const QFontMetricsF titleMetrics(titleFont(style_));
    const QString wholeTitle = text(content_.title);
    const QString wholeDetail = text(content_.detail);
    title_ = titleMetrics.elidedText(wholeTitle, Qt::ElideRight, width);
    details_ = lines(wholeDetail, detailFont(), width, mostDetails);
    isElided_ =
        title_ != wholeTitle || (!details_.isEmpty() && !wholeDetail.endsWith(details_.last()));

    double height = titleMetrics.height();
    if (!details_.isEmpty())
        height += lineGap + QFontMetricsF(detailFont()).height() * double(details_.size());
    if (content_.notice) height += noticeGap + QFontMetricsF(noticeFont()).height();
    // Beside the middle of the circle, unless there is more of it than of the circle.
    const double y = std::max(circle_.center().y() - height / 2, body.top() + top - 4);
    textBox_ = QRectF(left, std::round(y), width, height);
}

void AlertFace::layOutCompact(const QRectF& body, double textRight) {
    constexpr double symbolSize = 20;
    circle_ = {};
    const QSizeF badge = badgeSize();
    symbolBox_ =
        QRectF(body.left() + margin, body.center().y() - symbolSize / 2, symbolSize, symbolSize);
    const double left = symbolBox_.right() + 10;
    const QFontMetricsF metrics(titleFont(style_));
    const double width = textRight - left - (badge.isEmpty() ? 0 : badge.width() + 8);
    const QString wholeTitle = text(content_.title);
    title_ = metrics.elidedText(wholeTitle, Qt::ElideRight, width);
    details_.clear();
    // Behind the title, since it would cover too much of the small symbol.
    badge_ = QRectF(left + std::ceil(metrics.horizontalAdvance(title_)) + 8,
                    body.center().y() - badge.height() / 2, badge.width(), badge.height());
    isElided_ = title_ != wholeTitle || !content_.detail.empty() || content_.notice;
    textBox_ =
        QRectF(left, std::round(body.center().y() - metrics.height() / 2), width, metrics.height());
}

void AlertFace::draw(QPainter& painter, bool showsText) const {
    if (!circle_.isEmpty()) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(blended(accent_, Qt::black, 0.22));
        painter.drawEllipse(circle_);
    }
    if (showsText || style_ == AlertStyle::full) icons::draw(painter, symbol_, symbolBox_, accent_);
    if (!showsText) return;
    drawBadge(painter);

    double y = textBox_.top();
    const double left = textBox_.left();
    drawLine(painter, titleFont(style_), Qt::white, left, y, title_);
    if (style_ == AlertStyle::compact) return;
    if (!details_.isEmpty()) y += lineGap;
    for (const QString& line : details_)
        drawLine(painter, detailFont(), secondaryOnBlack, left, y, line);
    if (!content_.notice) return;
    y += noticeGap;
    const QFontMetricsF metrics(noticeFont());
    const double width = textBox_.width() - noticeSymbol - 4;
    icons::draw(painter, "clock",
                QRectF(left, y + (metrics.height() - noticeSymbol) / 2, noticeSymbol, noticeSymbol),
                accent_);
    drawLine(painter, noticeFont(), accent_, left + noticeSymbol + 4, y,
             metrics.elidedText(text(*content_.notice), Qt::ElideRight, width));
}

QSizeF AlertFace::badgeSize() const {
    if (content_.queuedCount <= 0) return {};
    constexpr double height = 18;
    const double count = QFontMetricsF(badgeFont()).horizontalAdvance(badgeText(content_));
    return {std::max(height, std::ceil(count) + 10), height};
}

void AlertFace::drawBadge(QPainter& painter) const {
    if (badge_.isEmpty()) return;
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    // A rim of the alert's black parts it from the circle.
    const double radius = badge_.height() / 2;
    painter.drawRoundedRect(badge_.adjusted(-2, -2, 2, 2), radius + 2, radius + 2);
    painter.setBrush(accent_);
    painter.drawRoundedRect(badge_, radius, radius);

    const QFontMetricsF metrics(badgeFont());
    const QString count = badgeText(content_);
    painter.setFont(badgeFont());
    painter.setPen(Theme::textOn(accent_));
    painter.drawText(QPointF(badge_.center().x() - metrics.horizontalAdvance(count) / 2,
                             badge_.center().y() + metrics.capHeight() / 2),
                     count);
}

QString AlertFace::wholeText() const {
    if (!isElided_) return {};
    QStringList parts{text(content_.title)};
    if (!content_.detail.empty()) parts.append(text(content_.detail));
    if (content_.notice) parts.append(text(*content_.notice));
    for (QString& part : parts)
        part = part.toHtmlEscaped();
    // Rich text, because plain text would not be broken into lines.
    return QStringLiteral("<p>") + parts.join(QStringLiteral("<br>")) + QStringLiteral("</p>");
}

}  // namespace tendel

#include "ui/window/DayTimelineView.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <utility>

#include "ui/theme/Callout.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/QtText.h"
#include "ui/theme/Theme.h"
#include "ui/window/DayTimelineSign.h"
#include "ui/window/DayTimelineWords.h"

namespace tendel {

namespace {

using Layout = DayTimelineLayout;
using State = DayTimeline::State;

constexpr double lineWidth = 2;
constexpr double lineGap = 1.5;  // around a sign
constexpr double headerGap = 8;
constexpr double reach = 6;  // around a mark, in which the pointer finds it

QColor colorOf(const Layout::Sign& sign) {
    const Theme& theme = Theme::instance();
    switch (sign.state) {
        case State::done:
            return theme.color(Theme::Color::good);
        case State::missed:
            return theme.color(Theme::Color::missed);
        case State::snoozed:
            return theme.color(Theme::Color::snoozed);
        case State::kept:
        case State::showing:
        case State::coming:
            break;
    }
    return sign.kind ? theme.accent(*sign.kind) : theme.color(Theme::Color::secondary);
}

}  // namespace

DayTimelineView::DayTimelineView(const Calendar& calendar, QWidget* parent)
    : MarkedView(tr("Today's alerts"), parent), calendar_(calendar), callout_(new Callout(this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &MarkedView::currentChanged, this, &DayTimelineView::showCallout);
    connect(&Theme::instance(), &Theme::changed, this, &DayTimelineView::layOut);
}

QSize DayTimelineView::sizeHint() const {
    return {400, static_cast<int>(Layout::height)};
}

QSize DayTimelineView::minimumSizeHint() const {
    return {240, static_cast<int>(Layout::height)};
}

void DayTimelineView::setTimeline(DayTimeline timeline) {
    timeline_ = std::move(timeline);
    setAccessibleDescription(
        toQString(summary(*timeline_) + ". " + workText(*timeline_, calendar_)));
    layOut();
}

void DayTimelineView::resizeEvent(QResizeEvent* event) {
    MarkedView::resizeEvent(event);
    layOut();
}

std::span<const DayTimeline::Mark> DayTimelineView::marksOf(const Group& group) const {
    return std::span(timeline_->marks).subspan(group.first, group.last - group.first);
}

void DayTimelineView::layOut() {
    if (!timeline_) return;
    layout_ = Layout::of(*timeline_, calendar_, width());
    const auto& groups = layout_.groups;
    std::vector<Mark> marks;
    std::optional<int> entry;  // what comes next
    for (std::size_t i = 0; i < groups.size(); ++i) {
        double left = groups[i].box.left() - reach;
        double right = groups[i].box.right() + reach;
        if (i > 0) left = std::max(left, (groups[i - 1].box.right() + groups[i].box.left()) / 2);
        if (i + 1 < groups.size())
            right = std::min(right, (groups[i].box.right() + groups[i + 1].box.left()) / 2);
        const auto of = marksOf(groups[i]);
        if (!entry && of.back().at >= timeline_->now) entry = static_cast<int>(i);
        marks.push_back({.area = {left, Layout::bandTop, right - left, Layout::bandHeight},
                         .sentence = toQString(DayTimelineWords::of(of, calendar_).sentence)});
    }
    setMarks(std::move(marks), entry);
    update();
}

void DayTimelineView::showCallout() {
    if (!current()) return callout_->hide();
    const auto index = static_cast<std::size_t>(*current());
    const auto words = DayTimelineWords::of(marksOf(layout_.groups[index]), calendar_);
    QStringList lines;
    for (const std::string& line : words.lines)
        lines << toQString(line);
    callout_->showAt(marks()[index].area, toQString(words.title), lines);
}

void DayTimelineView::paintEvent(QPaintEvent*) {
    if (!timeline_) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintHeader(painter);
    paintWork(painter);
    paintLine(painter);
    paintHours(painter);
    paintCurrent(painter);
    for (const Group& group : layout_.groups)
        paintGroup(painter, group);
}

void DayTimelineView::paintHeader(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    QRectF box(0, 0, width(), Layout::headerHeight);
    const auto write = [&](const QString& text, const QFont& font, Theme::Color color,
                           Qt::Alignment alignment) {
        const QFontMetricsF metrics(font);
        painter.setFont(font);
        painter.setPen(theme.color(color));
        painter.drawText(box, alignment | Qt::AlignVCenter,
                         metrics.elidedText(text, Qt::ElideRight, box.width()));
        box.setLeft(std::min(box.left() + metrics.horizontalAdvance(text), box.right()));
    };
    const QFont body = theme.font(Theme::Type::body);
    write(tr("Today"), theme.font(Theme::Type::body, true), Theme::Color::text, Qt::AlignLeft);
    if (timeline_->workStart == timeline_->workEnd)
        write(QStringLiteral(" · ") + toQString(workText(*timeline_, calendar_)), body,
              Theme::Color::secondary, Qt::AlignLeft);
    box.setLeft(std::min(box.left() + headerGap, box.right()));
    const QString counts = toQString(summary(*timeline_));
    const bool fits = QFontMetricsF(body).horizontalAdvance(counts) <= box.width();
    write(counts, fits ? body : Layout::captionFont(), Theme::Color::secondary, Qt::AlignRight);
}

// A tint, and for those to whom it is too faint a bar at its foot, where no sign stands.
void DayTimelineView::paintWork(QPainter& painter) const {
    if (layout_.workLeft >= layout_.workRight) return;
    const Theme& theme = Theme::instance();
    const QColor accent = theme.color(Theme::Color::workAccent);
    const QColor surface = theme.color(Theme::Color::surface);
    const QRectF band(layout_.workLeft, Layout::bandTop, layout_.workRight - layout_.workLeft,
                      Layout::bandHeight);
    QPainterPath shape;
    shape.addRoundedRect(band, Theme::controlRadius, Theme::controlRadius);
    painter.fillPath(shape, blended(accent, surface, theme.isDark() ? 0.16 : 0.09));
    painter.save();
    painter.setClipPath(shape);
    painter.fillRect(band.adjusted(0, band.height() - lineWidth, 0, 0),
                     blended(accent, surface, theme.isDark() ? 0.7 : 0.55));
    painter.restore();
}

// What is over is drawn stronger than what is to come; the signs stand in gaps.
void DayTimelineView::paintLine(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    painter.save();
    QPainterPath beside;
    beside.addRect(rect());
    for (const Group& group : layout_.groups) {
        QPainterPath sign;
        constexpr double radius = Layout::signSize / 2 + lineGap;
        sign.addEllipse(QPointF(group.box.center().x(), Layout::lineY), radius, radius);
        beside -= sign;
    }
    painter.setClipPath(beside);
    const auto draw = [&](double from, double to, const QColor& color) {
        painter.setPen(QPen(color, lineWidth, Qt::SolidLine, Qt::FlatCap));
        painter.drawLine(QPointF(from, Layout::lineY), QPointF(to, Layout::lineY));
    };
    const QColor faint = theme.color(Theme::Color::faint);
    draw(0, layout_.now.x, faint);
    draw(layout_.now.x, width(), blended(faint, theme.color(Theme::Color::surface), 0.45));
    painter.restore();
}

void DayTimelineView::paintHours(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    const QColor faint = theme.color(Theme::Color::faint);
    painter.setFont(Layout::captionFont());
    for (const Layout::Tick& tick : layout_.ticks) {
        painter.setPen(QPen(
            tick.label.isEmpty() ? blended(faint, theme.color(Theme::Color::surface), 0.5) : faint,
            1));
        painter.drawLine(QPointF(tick.x, Layout::tickTop),
                         QPointF(tick.x, Layout::tickTop + Layout::tickHeight));
        painter.setPen(theme.color(Theme::Color::secondary));
        painter.drawText(tick.box, Qt::AlignCenter, tick.label);
    }
    constexpr double over = 3;
    constexpr double top = Layout::bandTop - over;
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(Theme::Color::text));
    painter.drawRoundedRect(
        QRectF(layout_.now.x - 1, top, 2, Layout::tickTop + Layout::tickHeight - top), 1, 1);
    painter.setPen(theme.color(Theme::Color::text));
    painter.setFont(Layout::captionFont(true));
    painter.drawText(layout_.now.box, Qt::AlignCenter, layout_.now.label);
}

void DayTimelineView::paintCurrent(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    const auto box = [&](int index) {
        return layout_.groups[static_cast<std::size_t>(index)].box.adjusted(-2, -2, 2, 2);
    };
    if (current() && !(showsFocus() && walked() == current())) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(
            blended(theme.color(Theme::Color::text), theme.color(Theme::Color::surface), 0.12));
        painter.drawRoundedRect(box(*current()), Theme::controlRadius, Theme::controlRadius);
    }
    if (showsFocus() && walked()) drawFocusRing(painter, box(*walked()), Theme::controlRadius);
}

void DayTimelineView::paintGroup(QPainter& painter, const Group& group) const {
    const double x = group.box.center().x();
    double y = Layout::lineY;
    for (const Layout::Sign& sign : group.signs) {
        drawSign(painter, sign.state, {x, y}, colorOf(sign));
        y -= Layout::rowHeight;
    }
    if (!group.showsTotal()) return;
    painter.setPen(Theme::instance().color(Theme::Color::text));
    painter.setFont(Layout::captionFont(true));
    painter.drawText(QRectF(x - 40, Layout::lineY + Layout::rowHeight / 2, 80, Layout::rowHeight),
                     Qt::AlignCenter, QString::number(group.total()));
}

}  // namespace tendel

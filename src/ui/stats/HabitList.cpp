#include "ui/stats/HabitList.h"

#include <QKeyEvent>
#include <QPaintEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

#include "ui/stats/ChartFill.h"
#include "ui/stats/StatsSentences.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/QtText.h"
#include "ui/theme/SymbolCircle.h"
#include "ui/theme/TabularText.h"

namespace tendel {

namespace {

constexpr int rowHeight = 56;
constexpr int edge = 16;
constexpr int circle = 32;
constexpr int gap = 12;
constexpr int barHeight = 8;
constexpr int rateWidth = 48;

}  // namespace

HabitList::HabitList(const Calendar& calendar,
                     std::function<std::string(const StatsHabit&)> symbolOf, QWidget* parent)
    : MarkedView(tr("Habits"), parent),
      calendar_(calendar),
      symbolOf_(std::move(symbolOf)),
      callout_(new Callout(this)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(this, &MarkedView::currentChanged, this, &HabitList::explain);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void HabitList::setHabits(const std::vector<StatsHabit>& habits) {
    rows_.clear();
    for (const StatsHabit& habit : habits)
        rows_.push_back({.title = toQString(habit.title),
                         .line = StatsSentences::habitLine(habit, calendar_),
                         .sentence = StatsSentences::habitSentence(habit, calendar_),
                         .symbol = symbolOf_(habit),
                         .kind = habit.kind,
                         .isDeleted = habit.isDeleted(),
                         .tally = habit.tally});
    updateGeometry();
    arrange();
    update();
}

QSize HabitList::sizeHint() const {
    return {600, rowHeight * static_cast<int>(rows_.size())};
}

void HabitList::arrange() {
    const QFontMetrics metrics(Theme::instance().font(Theme::Type::caption));
    areBarsRaised_ = std::ranges::any_of(
        rows_, [&](const Row& row) { return metrics.horizontalAdvance(row.line) > titleWidth(); });
    std::vector<Mark> marks;
    for (int i = 0; i < std::ssize(rows_); ++i)
        marks.push_back({box(i), rows_[static_cast<std::size_t>(i)].sentence});
    setMarks(std::move(marks), 0);
}

void HabitList::resizeEvent(QResizeEvent*) {
    arrange();
}

QRectF HabitList::box(int index) const {
    return QRectF(0, index * rowHeight, width(), rowHeight);
}

double HabitList::barWidth() const {
    return std::clamp(width() * 0.22, 72.0, 180.0);
}

double HabitList::titleWidth() const {
    return width() - 2 * edge - circle - 2 * gap - barWidth() - rateWidth;
}

double HabitList::lineWidth() const {
    return areBarsRaised_ ? width() - 2 * edge - circle - gap : titleWidth();
}

// Only what is not seen whole needs telling.
void HabitList::explain() {
    if (!current()) return callout_->hide();
    const QRectF row = box(*current());
    if (hasFocus() && walked() == current()) Q_EMIT walkedTo(row.toRect());
    const Row& shown = rows_[static_cast<std::size_t>(*current())];
    const Theme& theme = Theme::instance();
    const bool isWhole =
        QFontMetrics(theme.font(Theme::Type::body)).horizontalAdvance(shown.title) <=
            titleWidth() &&
        QFontMetrics(theme.font(Theme::Type::caption)).horizontalAdvance(shown.line) <= lineWidth();
    if (isWhole) return callout_->hide();
    callout_->showAt(row, shown.title, {shown.line});
}

void HabitList::keyPressEvent(QKeyEvent* event) {
    const int here = walked().value_or(0);
    switch (event->key()) {
        case Qt::Key_Up:
            return walkTo(here - 1);
        case Qt::Key_Down:
            return walkTo(walked() ? here + 1 : here);
        default:
            MarkedView::keyPressEvent(event);
    }
}

void HabitList::paintEvent(QPaintEvent* event) {
    if (rows_.empty()) return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int last = static_cast<int>(rows_.size()) - 1;
    const int from = std::clamp(event->rect().top() / rowHeight, 0, last);
    const int to = std::clamp(event->rect().bottom() / rowHeight, 0, last);
    for (int i = from; i <= to; ++i)
        drawRow(painter, i);
}

void HabitList::drawRow(QPainter& painter, int index) const {
    const Theme& theme = Theme::instance();
    const Row& row = rows_[static_cast<std::size_t>(index)];
    const QRectF whole = box(index);
    if (index > 0) {
        const double hairline = 1 / devicePixelRatioF();
        painter.fillRect(QRectF(edge + circle + gap, whole.top(),
                                width() - edge - circle - gap - edge, hairline),
                         theme.color(Theme::Color::hairline));
    }
    const QRectF chosen = whole.adjusted(4, 4, -4, -4);
    if (current() == index) {
        QColor band = theme.color(Theme::Color::text);
        band.setAlphaF(0.05F);
        painter.setPen(Qt::NoPen);
        painter.setBrush(band);
        painter.drawRoundedRect(chosen, Theme::controlRadius, Theme::controlRadius);
    }
    if (showsFocus() && walked() == index) drawFocusRing(painter, chosen, Theme::controlRadius);

    const double middle = whole.center().y();
    const QRectF symbol(edge, middle - circle / 2.0, circle, circle);
    drawSymbolCircle(painter, row.symbol, symbol,
                     row.isDeleted ? theme.color(Theme::Color::secondary) : theme.accent(row.kind));

    const double left = symbol.right() + gap;
    const auto write = [&](Theme::Type type, Theme::Color color, double baseline,
                           const QString& text) {
        painter.setFont(theme.font(type));
        painter.setPen(theme.color(color));
        painter.drawText(QPointF(left, baseline), text);
    };
    const auto elided = [&](Theme::Type type, const QString& text, Qt::TextElideMode mode,
                            double room) {
        return QFontMetrics(theme.font(type)).elidedText(text, mode, static_cast<int>(room));
    };
    write(Theme::Type::body, row.isDeleted ? Theme::Color::secondary : Theme::Color::text,
          middle - 3, elided(Theme::Type::body, row.title, Qt::ElideMiddle, titleWidth()));
    write(Theme::Type::caption, Theme::Color::secondary, middle + 14,
          elided(Theme::Type::caption, row.line, Qt::ElideRight, lineWidth()));

    const double right = width() - edge;
    const double barMiddle = areBarsRaised_ ? middle - 8 : middle;
    const QRectF track(right - rateWidth - barWidth(), barMiddle - barHeight / 2.0, barWidth(),
                       barHeight);
    QColor ground = theme.color(Theme::Color::text);
    ground.setAlphaF(0.08F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(ground);
    painter.drawRoundedRect(track, barHeight / 2.0, barHeight / 2.0);
    const auto rate = row.tally.doneRate();
    if (rate && *rate > 0) {
        QRectF filled = track;
        filled.setWidth(std::max<double>(barHeight, track.width() * *rate));
        painter.setBrush(theme.color(row.isDeleted ? Theme::Color::secondary : Theme::Color::good));
        painter.drawRoundedRect(filled, barHeight / 2.0, barHeight / 2.0);
    }
    painter.setFont(theme.font(Theme::Type::body));
    painter.setPen(theme.color(Theme::Color::text));
    drawTabular(painter, QRectF(right - rateWidth, barMiddle - 10, rateWidth, 20),
                Qt::AlignRight | Qt::AlignVCenter,
                rate ? StatsSentences::percent(*rate) : QStringLiteral("–"));
}

}  // namespace tendel

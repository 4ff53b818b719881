#include "ui/stats/StatsChart.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "ui/stats/StatsSentences.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/QtText.h"
#include "ui/theme/TabularText.h"

namespace tendel {

namespace {

constexpr double legendHeight = 18;
constexpr double legendGap = 14;  // room for the topmost number
constexpr double plotHeight = 180;
constexpr double panelGap = 18;
constexpr double focusHeight = 48;  // of the focus panel when there are alerts too
constexpr double labelsHeight = 22;
constexpr double axisGap = 8;
constexpr double segmentGap = 1;
constexpr double leastBar = 2;  // what is not 0 is seen
constexpr double widestBar = 28;

constexpr std::array<int, 6> hourStrides{1, 2, 3, 4, 6, 12};
constexpr std::array<int, 5> dayStrides{1, 2, 5, 7, 10};

QFont axisFont() {
    return Theme::instance().font(Theme::Type::caption);
}

std::int64_t counted(const StatsTally& tally) {
    return tally.done + tally.missed + tally.snoozed;
}

double heightOf(std::int64_t value, double panelHeight, const ChartScale& scale) {
    if (value == 0) return 0;
    return std::max(leastBar,
                    panelHeight * static_cast<double>(value) / static_cast<double>(scale.top()));
}

}  // namespace

StatsChart::StatsChart(const Calendar& calendar, QWidget* parent)
    : MarkedView(tr("Chart"), parent), calendar_(calendar), callout_(new Callout(this)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(this, &MarkedView::currentChanged, this, &StatsChart::explain);
    connect(&Theme::instance(), &Theme::changed, this, &StatsChart::arrange);
}

void StatsChart::setContent(std::vector<StatsBucket> buckets, StatsRange range, Instant now) {
    buckets_ = std::move(buckets);
    range_ = range;
    now_ = now;
    arrange();
}

QSize StatsChart::sizeHint() const {
    return {600,
            static_cast<int>(legendHeight + legendGap + plotHeight + labelsHeight) + focusMargin};
}

// Both panels share the slots; what the range does not have takes no room.
void StatsChart::arrange() {
    if (buckets_.empty()) return setMarks({});
    std::int64_t mostAlerts = 0;
    std::int64_t mostFocus = 0;
    for (const StatsBucket& bucket : buckets_) {
        mostAlerts = std::max(mostAlerts, counted(bucket.tally));
        mostFocus = std::max(mostFocus, bucket.focusSeconds);
    }
    const bool hasAlerts = mostAlerts > 0 || mostFocus == 0;
    const bool hasFocus = mostFocus > 0;
    alerts_.scale = ChartScale::ofCounts(mostAlerts, 4);
    focus_.scale = ChartScale::ofSeconds(mostFocus, hasAlerts ? 2 : 4);

    const QFont font = axisFont();
    double axisWidth = 0;
    if (hasAlerts) axisWidth = tabularWidth(font, alertsLabel(alerts_.scale.top()));
    for (int line = 1; hasFocus && line <= focus_.scale.lines; ++line)
        axisWidth = std::max(axisWidth, tabularWidth(font, focusLabel(focus_.scale.step * line)));
    const double left = focusMargin + std::ceil(axisWidth) + axisGap;
    plot_ = QRectF(left, legendHeight + legendGap, std::max(1.0, width() - left - focusMargin),
                   plotHeight);
    alerts_.box = focus_.box = plot_;
    if (hasAlerts && hasFocus) {
        alerts_.box.setBottom(plot_.bottom() - focusHeight - panelGap);
        focus_.box.setTop(plot_.bottom() - focusHeight);
    } else if (hasAlerts) {
        focus_.box = {};
    } else {
        alerts_.box = {};
    }

    std::vector<Mark> marks;
    int entry = 0;  // the slot of now
    for (std::size_t i = 0; i < buckets_.size(); ++i) {
        const int index = static_cast<int>(i);
        if (buckets_[i].interval.contains(now_)) entry = index;
        marks.push_back(
            {slot(index), StatsSentences::slotSentence(buckets_[i], range_, calendar_)});
    }
    setMarks(std::move(marks), entry);
    update();
}

void StatsChart::resizeEvent(QResizeEvent*) {
    arrange();
}

QRectF StatsChart::slot(int index) const {
    return {plot_.left() + index * slotWidth(), plot_.top() - 4, slotWidth(),
            plot_.height() + 4 + labelsHeight};
}

void StatsChart::explain() {
    if (!current()) return callout_->hide();
    const StatsBucket& bucket = buckets_[static_cast<std::size_t>(*current())];
    callout_->showAt(slot(*current()),
                     StatsSentences::slotTitle(bucket.interval, range_, calendar_),
                     StatsSentences::slotLines(bucket));
}

QString StatsChart::alertsLabel(std::int64_t value) const {
    return StatsSentences::number(value);
}

QString StatsChart::focusLabel(std::int64_t value) const {
    return StatsSentences::duration(value);
}

QString StatsChart::slotLabel(std::size_t index) const {
    const Instant start = buckets_[index].interval.start;
    switch (range_) {
        case StatsRange::today:
            return toQString(calendar_.formatTime(calendar_.localTime(start).hour, 0));
        case StatsRange::week:
            return toQString(calendar_.formatWeekdayShort(start));
        case StatsRange::month:
            break;
    }
    return toQString(calendar_.formatDateShort(start));
}

bool StatsChart::isCurrentSlot(std::size_t index) const {
    return buckets_[index].interval.contains(now_);
}

void StatsChart::paintEvent(QPaintEvent*) {
    if (buckets_.empty()) return;
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    drawLegend(painter);
    painter.setPen(Qt::NoPen);
    for (int i = 0; i < std::ssize(buckets_); ++i) {
        const bool isChosen = current() == i;
        if (!isChosen && !isCurrentSlot(static_cast<std::size_t>(i))) continue;
        QColor band = theme.color(Theme::Color::text);
        band.setAlphaF(isChosen ? 0.09F : 0.05F);
        painter.setBrush(band);
        painter.drawRoundedRect(slot(i), 4, 4);
    }
    if (!alerts_.box.isEmpty()) drawGrid(painter, alerts_, &StatsChart::alertsLabel);
    if (!focus_.box.isEmpty()) drawGrid(painter, focus_, &StatsChart::focusLabel);
    for (int i = 0; i < std::ssize(buckets_); ++i)
        drawBars(painter, i);
    drawSlotLabels(painter);
    if (showsFocus() && walked()) drawFocusRing(painter, slot(*walked()).adjusted(1, 1, -1, -1), 4);
}

void StatsChart::drawLegend(QPainter& painter) const {
    const std::array<std::pair<ChartFill, QString>, 4> entries{
        {{ChartFill::done, tr("Done")},
         {ChartFill::missed, tr("Missed")},
         {ChartFill::snoozed, tr("Snoozed")},
         {ChartFill::focus, tr("Focus time")}}};
    constexpr double swatchSize = 11;
    constexpr double swatchGap = 6;
    constexpr double entryGap = 16;
    painter.setFont(axisFont());
    double x = focusMargin;
    for (const auto& [fill, name] : entries) {
        const Panel& panel = fill == ChartFill::focus ? focus_ : alerts_;
        if (panel.box.isEmpty()) continue;
        drawBar(painter, QRectF(x, (legendHeight - swatchSize) / 2, swatchSize, swatchSize), fill);
        x += swatchSize + swatchGap;
        painter.setPen(Theme::instance().color(Theme::Color::secondary));
        const double width = painter.fontMetrics().horizontalAdvance(name);
        painter.drawText(QRectF(x, 0, width + 2, legendHeight), Qt::AlignVCenter | Qt::AlignLeft,
                         name);
        x += width + entryGap;
    }
}

void StatsChart::drawGrid(QPainter& painter, const Panel& panel,
                          QString (StatsChart::*label)(std::int64_t) const) const {
    const Theme& theme = Theme::instance();
    const double hairline = 1 / devicePixelRatioF();
    painter.setFont(axisFont());
    for (int line = 0; line <= panel.scale.lines; ++line) {
        const double y =
            std::round(panel.box.bottom() - panel.box.height() * line / panel.scale.lines);
        QColor ink = theme.color(Theme::Color::text);
        ink.setAlphaF(line == 0 ? 0.28F : 0.09F);
        painter.fillRect(QRectF(panel.box.left(), y - hairline, panel.box.width(), hairline), ink);
        painter.setPen(theme.color(Theme::Color::secondary));
        drawTabular(painter, QRectF(0, y - 8, panel.box.left() - axisGap, 16),
                    Qt::AlignRight | Qt::AlignVCenter,
                    line == 0 ? QStringLiteral("0") : (this->*label)(panel.scale.step * line));
    }
}

// Done stands on the axis, since it is what is compared; the others are stacked on it.
void StatsChart::drawBars(QPainter& painter, int index) const {
    const StatsBucket& bucket = buckets_[static_cast<std::size_t>(index)];
    const double width = std::min(widestBar, std::max(3.0, slotWidth() * 0.62));
    const double left = slot(index).center().x() - width / 2;
    double bottom = alerts_.box.bottom();
    for (const auto& [value, fill] : {std::pair(bucket.tally.done, ChartFill::done),
                                      std::pair(bucket.tally.missed, ChartFill::missed),
                                      std::pair(bucket.tally.snoozed, ChartFill::snoozed)}) {
        if (alerts_.box.isEmpty() || value == 0) continue;
        const double height = heightOf(value, alerts_.box.height(), alerts_.scale);
        const double gap = height > 2 * segmentGap + leastBar ? segmentGap : 0;
        drawBar(painter, QRectF(left, bottom - height, width, height - gap), fill);
        bottom -= height;
    }
    if (focus_.box.isEmpty() || bucket.focusSeconds == 0) return;
    const double height = heightOf(bucket.focusSeconds, focus_.box.height(), focus_.scale);
    drawBar(painter, QRectF(left, focus_.box.bottom() - height, width, height - segmentGap),
            ChartFill::focus);
}

void StatsChart::drawSlotLabels(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    const QFontMetricsF metrics(axisFont());
    double widest = 0;
    for (std::size_t i = 0; i < buckets_.size(); ++i)
        widest = std::max(widest, metrics.horizontalAdvance(slotLabel(i)));
    const bool areHours = range_ == StatsRange::today;
    const int stride = areHours                     ? labelStride(hourStrides, widest, slotWidth())
                       : range_ == StatsRange::week ? 1
                                                    : labelStride(dayStrides, widest, slotWidth());
    const int last = static_cast<int>(buckets_.size()) - 1;
    double taken = -1000;  // up to where the label before reaches
    for (int i = 0; i <= last; ++i) {
        const auto at = static_cast<std::size_t>(i);
        // Hours are counted from midnight on the clock, days back from today.
        const int place =
            areHours ? calendar_.localTime(buckets_[at].interval.start).hour : last - i;
        if (place % stride != 0) continue;
        const bool isToday = !areHours && isCurrentSlot(at);
        painter.setFont(theme.font(Theme::Type::caption, isToday));
        painter.setPen(theme.color(isToday ? Theme::Color::text : Theme::Color::secondary));
        const QString label = slotLabel(at);
        const double width = painter.fontMetrics().horizontalAdvance(label) + 1.0;
        // An hour's label stands at its beginning, a day's under its middle.
        const double centre = areHours ? slot(i).left() : slot(i).center().x();
        const double left = std::clamp(centre - width / 2, 0.0, this->width() - width);
        if (left < taken + 4) continue;
        taken = left + width;
        painter.drawText(QRectF(left, plot_.bottom() + 2, width + 1, labelsHeight - 2),
                         Qt::AlignVCenter | Qt::AlignLeft, label);
    }
}

}  // namespace tendel

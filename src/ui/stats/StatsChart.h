#pragma once

#include <vector>

#include "stats/Stats.h"
#include "ui/stats/ChartFill.h"
#include "ui/stats/ChartScale.h"
#include "ui/theme/Callout.h"
#include "ui/theme/MarkedView.h"

namespace tendel {

// What was counted in each slot of a range: a bar of done, missed and snoozed, and under it one of
// focus time on a scale of its own. Each slot is told as one sentence.
class StatsChart : public MarkedView {
    Q_OBJECT
public:
    explicit StatsChart(const Calendar& calendar, QWidget* parent = nullptr);

    void setContent(std::vector<StatsBucket> buckets, StatsRange range, Instant now);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    // A row of bars over one axis.
    struct Panel {
        QRectF box;
        ChartScale scale;
    };

    void arrange();
    void explain();
    double slotWidth() const { return plot_.width() / static_cast<double>(buckets_.size()); }
    QRectF slot(int index) const;
    QString alertsLabel(std::int64_t value) const;
    QString focusLabel(std::int64_t value) const;
    QString slotLabel(std::size_t index) const;
    bool isCurrentSlot(std::size_t index) const;

    void drawLegend(QPainter& painter) const;
    void drawGrid(QPainter& painter, const Panel& panel,
                  QString (StatsChart::*label)(std::int64_t) const) const;
    void drawBars(QPainter& painter, int index) const;
    void drawSlotLabels(QPainter& painter) const;

    const Calendar& calendar_;
    std::vector<StatsBucket> buckets_;
    StatsRange range_ = StatsRange::today;
    Instant now_;
    QRectF plot_;  // both panels
    Panel alerts_;
    Panel focus_;  // without a box when there is none
    Callout* callout_;
};

}  // namespace tendel

#pragma once

#include <optional>
#include <span>

#include "base/Calendar.h"
#include "reminders/DayTimeline.h"
#include "ui/theme/MarkedView.h"
#include "ui/window/DayTimelineLayout.h"

namespace tendel {

class Callout;

// The day as one line with a sign for each alert; alerts that would fall on the same place share
// one mark that counts them.
class DayTimelineView : public MarkedView {
    Q_OBJECT
public:
    // The calendar must outlive it.
    explicit DayTimelineView(const Calendar& calendar, QWidget* parent = nullptr);

    void setTimeline(DayTimeline timeline);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    using Group = DayTimelineLayout::Group;

    void layOut();
    std::span<const DayTimeline::Mark> marksOf(const Group& group) const;
    void showCallout();

    void paintHeader(QPainter& painter) const;
    void paintWork(QPainter& painter) const;
    void paintLine(QPainter& painter) const;
    void paintHours(QPainter& painter) const;
    void paintCurrent(QPainter& painter) const;
    void paintGroup(QPainter& painter, const Group& group) const;

    const Calendar& calendar_;
    Callout* callout_;
    std::optional<DayTimeline> timeline_;
    DayTimelineLayout layout_;
};

}  // namespace tendel

#pragma once

#include <functional>
#include <string>
#include <vector>

#include "stats/Stats.h"
#include "ui/theme/Callout.h"
#include "ui/theme/MarkedView.h"

namespace tendel {

// The habits of a range as rows: what became of a reminder in words, and how much of it was done as
// a bar. Draws only the rows that are seen, so that there may be many.
class HabitList : public MarkedView {
    Q_OBJECT
public:
    // `symbolOf` answers the symbol that a habit's reminder shows.
    HabitList(const Calendar& calendar, std::function<std::string(const StatsHabit&)> symbolOf,
              QWidget* parent = nullptr);

    void setHabits(const std::vector<StatsHabit>& habits);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

Q_SIGNALS:
    // The keyboard is on a row in this place, which should be seen.
    void walkedTo(QRect place);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Row {
        QString title;
        QString line;
        QString sentence;
        std::string symbol;
        ReminderKind kind = ReminderKind::work;
        bool isDeleted = false;
        StatsTally tally;
    };

    void arrange();
    void explain();
    QRectF box(int index) const;
    double barWidth() const;
    double titleWidth() const;
    double lineWidth() const;
    void drawRow(QPainter& painter, int index) const;

    const Calendar& calendar_;
    std::function<std::string(const StatsHabit&)> symbolOf_;
    std::vector<Row> rows_;
    // Where a line would not fit beside the bars, these stand higher and leave it the whole row.
    bool areBarsRaised_ = false;
    Callout* callout_;
};

}  // namespace tendel

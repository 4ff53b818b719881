#pragma once

#include <QWidget>

#include <memory>
#include <utility>
#include <vector>

#include "app/TendelApp.h"
#include "stats/Stats.h"
#include "stats/StatsHistory.h"
#include "ui/stats/HistoryTransfer.h"
#include "ui/theme/Refresh.h"

class QGridLayout;

namespace tendel {

class GoalCard;
class HabitList;
class IconButton;
class Label;
class SegmentedControl;
class SlimScrollArea;
class StatsChart;
class StatsGhost;
class StatsTiles;

// The statistics of a range, with the goal of the day above them. Counted when the page is shown
// and, while it is, once for each change of what it shows; what is on the screen is changed in
// place, so that scroll position and keyboard stay. The history is read when the page is first
// shown.
class StatsPage : public QWidget {
    Q_OBJECT
public:
    explicit StatsPage(TendelApp& app, QWidget* parent = nullptr);

    // Where the keyboard starts on this page.
    QWidget* firstFocus() const;

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* makeHeader();
    QWidget* makeFigures();
    QWidget* makeQuietRange();
    // The controls beside the title where they fit, else beneath it, one under the other in need.
    void arrangeHeader();
    void openMenu();
    void tell(const QString& text, HistoryTransfer::Outcome outcome);
    void lookAtClock();
    void refresh();
    std::string symbolOf(const StatsHabit& habit) const;

    TendelApp& app_;
    HistoryTransfer* transfer_;
    QGridLayout* header_;
    QWidget* controls_;
    SegmentedControl* range_;
    SegmentedControl* filter_;
    IconButton* menuButton_;
    Label* message_;
    SlimScrollArea* scroll_;
    GoalCard* goal_;
    StatsGhost* ghost_;
    QWidget* figures_;
    StatsTiles* tiles_;
    StatsChart* chart_;
    QWidget* quietRange_;
    Label* quietTitle_;
    Label* quietText_;
    QWidget* habitsGroup_;
    HabitList* habits_;
    std::unique_ptr<StatsHistory> history_;
    std::pair<CivilDay, int> hourShown_;
    Refresh refresh_{*this, [this] { refresh(); }};
    Subscription historyChanged_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

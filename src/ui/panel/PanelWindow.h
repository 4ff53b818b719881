#pragma once

#include <QWidget>

#include <functional>
#include <vector>

#include "app/TendelApp.h"
#include "menubar/PanelMenu.h"
#include "stats/StreakSearch.h"

namespace tendel {

class FocusStrip;
class NextReminderView;
class PanelMenuView;

// The panel under the tray icon: what comes next, the focus timer and the menu. Takes the keyboard
// and closes when it loses it, on Escape and after what leads elsewhere; then it deletes itself.
class PanelWindow : public QWidget {
    Q_OBJECT
public:
    explicit PanelWindow(TendelApp& app);

    // Shows it for an icon at that place, with the keyboard.
    void openAt(QPoint icon);

    // It closes because the user turned to something else.
    std::function<void()> onLeft = [] {};

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void place();
    void invalidate();
    void refreshCard();
    void refreshMenu();
    void countStreak();
    void choose(const PanelMenuEntry::Action& action);
    std::vector<QWidget*> stops() const;
    void walk(int key);

    TendelApp& app_;
    QPoint icon_;
    NextReminderView* card_;
    FocusStrip* focus_;
    PanelMenuView* menu_;
    std::int64_t streakDays_ = 0;
    bool isRefreshQueued_ = false;
    bool isPainted_ = false;
    StreakSearch streak_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

#pragma once

#include <QPointer>
#include <QWidget>

#include <functional>
#include <map>
#include <optional>
#include <vector>

#include "app/AlertHold.h"
#include "app/TendelApp.h"

class QStackedWidget;

namespace tendel {

class FocusCountdown;
class FocusPage;
class ReminderEditor;
class ReminderListPage;
class Sheet;
class Sidebar;
class StatsPage;
class StatusLine;

// The window with the sections at its left. Made when it is asked for and deleted when it is
// closed; closing asks about what was written in the editor and not saved.
class MainWindow : public QWidget {
    Q_OBJECT
public:
    MainWindow(TendelApp& app, const Observable<std::optional<AlertHold>>& hold);

    // Shows the window in front of others, on the section that was asked for if there was one.
    void comeForward();
    void showSection(SidebarItem item);
    void createReminder();
    void editReminder(ReminderId id);

protected:
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    QWidget* firstFocus() const;
    // Null while another section is shown.
    ReminderListPage* listPage() const;
    bool hasSheet() const;
    void openEditor(const Reminder& reminder);
    void leaveEditor();
    void askAboutChanges(std::function<void()> whenLeft);
    void askToDelete(ReminderListPage& page, ReminderId id);
    void addListPage(SidebarItem item, ReminderKind kind);
    void addFocusPage();
    void addShortcuts();
    void refreshCounts();
    void refreshFocusNote();
    void refreshStatus();

    TendelApp& app_;
    const Observable<std::optional<AlertHold>>& hold_;
    Sidebar* sidebar_;
    QStackedWidget* pages_;
    StatusLine* status_;
    std::map<SidebarItem, QWidget*> pageOf_;
    FocusPage* focusPage_ = nullptr;
    StatsPage* statsPage_ = nullptr;
    FocusCountdown* focusCountdown_ = nullptr;
    QPointer<Sheet> editorSheet_;
    QPointer<Sheet> question_;
    ReminderEditor* editor_ = nullptr;         // on `editorSheet_`
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

#pragma once

#include <QWidget>

#include <optional>
#include <vector>

#include "app/TendelApp.h"
#include "ui/window/ReminderCard.h"

class QVBoxLayout;

namespace tendel {

class Button;
class Label;
class SlimScrollArea;

// The day's line, and the reminders of one kind, as cards that follow the store, the clock and the
// working hours. Cards are changed in place, so that focus and scroll position stay.
class ReminderListPage : public QWidget {
    Q_OBJECT
public:
    static constexpr int edge = 24;  // between a page's side and what it holds
    // Where the column of cards begins in a page of that width; it is centred in a wide one.
    static int leftOfColumn(int width);

    ReminderListPage(TendelApp& app, ReminderKind kind, QWidget* parent = nullptr);

    ReminderKind kind() const { return kind_; }
    // Puts the keyboard on a reminder's card and scrolls to it.
    void focusReminder(ReminderId id);
    // The keyboard goes to the reminder after it, or the one before, or the button for a new one.
    void remove(ReminderId id);
    // Where the keyboard starts on this page.
    QWidget* firstFocus() const;

Q_SIGNALS:
    void newRequested();
    void editRequested(ReminderId id);
    void deleteRequested(ReminderId id);

protected:
    void showEvent(QShowEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void refresh();
    QString summary(Instant now, std::optional<Instant> next) const;
    ReminderCard* makeCard(ReminderCard::Content content);
    QWidget* makeHeader();
    QWidget* makeTimeline();
    QWidget* makeEmptyState();
    void moveFocus(int step);
    void duplicate(ReminderId id);
    void setOn(ReminderId id, bool isOn);
    // Saves and shows on the page when that fails.
    bool save(const QString& what, const std::function<void(Store::Writer&)>& changes);

    TendelApp& app_;
    ReminderKind kind_;
    Button* newButton_;
    Label* summary_;
    Label* message_;
    QWidget* timeline_;
    SlimScrollArea* scroll_;
    QVBoxLayout* column_;
    QWidget* emptyState_;
    Button* emptyStateButton_;
    std::vector<ReminderCard*> cards_;         // in the order of the list
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

#pragma once

#include "base/Calendar.h"
#include "base/EventLoop.h"
#include "storage/AppSettings.h"
#include "ui/theme/Card.h"

namespace tendel {

class Button;
class IconButton;
class Label;
class TextField;

// The one goal of the day: asked for, shown, ticked off. A goal of another day stays until today
// has one.
class GoalCard : public Card {
    Q_OBJECT
public:
    GoalCard(AppSettings& settings, const EventLoop& loop, const Calendar& calendar,
             QWidget* parent = nullptr);

    // To be called when the day may be another one.
    void refresh();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Mark;

    void edit();
    void leaveEditing();
    void save();
    void remove();
    void toggle();

    AppSettings& settings_;
    const EventLoop& loop_;
    const Calendar& calendar_;
    QWidget* goalRow_;
    Mark* mark_;
    Label* caption_;
    Label* text_;
    IconButton* editButton_;
    QWidget* fieldRow_;
    TextField* field_;
    Button* cancel_;
    IconButton* remove_;
    Button* set_;
    bool isEditing_ = false;
    Subscription goalChanged_;  // last member: goes first
};

}  // namespace tendel

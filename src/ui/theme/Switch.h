#pragma once

#include "model/Reminder.h"
#include "ui/theme/PaintedButton.h"

namespace tendel {

// Turns something on and off at once. Knob and colour both tell the state.
class Switch : public PaintedButton {
    Q_OBJECT
public:
    explicit Switch(const QString& name, QWidget* parent = nullptr);
    // The accent of the track when it is on.
    void setKind(ReminderKind kind);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ReminderKind kind_ = ReminderKind::work;
};

}  // namespace tendel

#pragma once

#include <QString>

#include <array>

#include "model/Reminder.h"
#include "ui/theme/PaintedButton.h"

namespace tendel {

class IconButton;
class Switch;

// One reminder in a list. Pressing it edits; its own keys: Space switches it on and off, Delete
// removes, Ctrl+D duplicates. Shows the buttons for these while the pointer or the keyboard is on
// it.
class ReminderCard : public PaintedButton {
    Q_OBJECT
public:
    struct Content {
        Reminder reminder;
        QString status;
        bool neverFires = false;

        friend bool operator==(const Content&, const Content&) = default;
    };

    explicit ReminderCard(Content content, QWidget* parent = nullptr);

    const Reminder& reminder() const { return content_.reminder; }
    // Repaints only when something differs.
    void setContent(Content content);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

Q_SIGNALS:
    void editRequested();
    void duplicateRequested();
    void deleteRequested();
    void switched(bool isOn);

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Columns {
        QRectF text;
        QRectF status;
    };
    Columns columns() const;
    QString detailsLine() const;
    void adopt();
    void showActions(bool areShown);
    void makeActions();
    void placeChildren();
    void paintText(QPainter& painter) const;

    Content content_;
    Switch* switch_;
    // Edit, duplicate, delete; made when they are first needed, since a list may be long.
    std::array<IconButton*, 3> actions_{};
    bool areActionsShown_ = false;
};

}  // namespace tendel

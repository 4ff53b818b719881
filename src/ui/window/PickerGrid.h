#pragma once

#include <QWidget>

#include <string>
#include <vector>

#include "model/Reminder.h"

class QAbstractButton;

namespace tendel {

// One of many, as a grid of cells. One stop for the Tab key; the arrow keys choose.
class PickerGrid : public QWidget {
    Q_OBJECT
public:
    struct Cell {
        std::string symbol;  // empty: none
        QString label;       // empty: the symbol alone
        QString name;        // told to screen readers and shown as a tooltip
    };

    PickerGrid(const QString& name, std::vector<Cell> cells, int columns,
               QWidget* parent = nullptr);

    // -1: none of them. Without `chosen`.
    void setCurrent(int index);
    int current() const { return current_; }
    void setKind(ReminderKind kind);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

Q_SIGNALS:
    // A person chose another one.
    void chosen(int index);

protected:
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class CellButton;
    void choose(int index, Qt::FocusReason reason);
    int rows() const;

    std::vector<CellButton*> cells_;
    int columns_;
    int current_ = -1;
};

}  // namespace tendel

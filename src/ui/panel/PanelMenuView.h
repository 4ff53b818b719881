#pragma once

#include <QWidget>

#include <vector>

#include "menubar/PanelMenu.h"

namespace tendel {

class PanelRow;

// The menu's rows beneath one another; a row with rows of its own shows them in place.
class PanelMenuView : public QWidget {
    Q_OBJECT
public:
    explicit PanelMenuView(QWidget* parent = nullptr);

    // The keyboard stays on the row at its place.
    void setEntries(const std::vector<PanelMenuEntry>& entries);

Q_SIGNALS:
    void chosen(const PanelMenuEntry::Action& action);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    // A row of the menu, and those that it shows beneath itself.
    struct Group {
        PanelRow* row;
        std::vector<PanelRow*> rows;
    };
    PanelRow* makeRow(const PanelMenuEntry& entry);
    void add(const PanelMenuEntry& entry);
    void setOpen(const Group& group, bool isOpen);

    std::vector<Group> groups_;      // from top to bottom
    std::vector<PanelRow*> starts_;  // a line is drawn above these
};

}  // namespace tendel

#pragma once

#include <QWidget>

#include <string>
#include <vector>

#include "app/AppNavigation.h"

namespace tendel {

// The sections of the window. One stop for the Tab key; the up and down arrows choose.
class Sidebar : public QWidget {
    Q_OBJECT
public:
    struct Section {
        SidebarItem item;
        QString name;
        std::string symbol;
    };

    explicit Sidebar(std::vector<Section> sections, QWidget* parent = nullptr);

    void setCurrent(SidebarItem item);
    void setCount(SidebarItem item, int count);

Q_SIGNALS:
    void chosen(SidebarItem item);

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    class Row;
    std::vector<Row*> rows_;
};

}  // namespace tendel

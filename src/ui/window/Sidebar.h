#pragma once

#include <QWidget>

#include <string>
#include <vector>

#include "app/AppNavigation.h"
#include "ui/theme/Theme.h"

namespace tendel {

// The sections of the window. One stop for the Tab key; the up and down arrows choose.
class Sidebar : public QWidget {
    Q_OBJECT
public:
    struct Section {
        SidebarItem item;
        QString name;
        std::string symbol;
        Theme::Color color = Theme::Color::workAccent;  // of the symbol
    };

    explicit Sidebar(std::vector<Section> sections, QWidget* parent = nullptr);

    void setCurrent(SidebarItem item);
    // A few words at the right of a section's name, and what a screen reader tells instead.
    void setNote(SidebarItem item, const QString& note, const QString& spoken);

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

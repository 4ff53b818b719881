#pragma once

#include <QMenu>

namespace tendel {

// A popup menu in the colours and measures of the program.
class Menu : public QMenu {
    Q_OBJECT
public:
    explicit Menu(QWidget* parent = nullptr);

private:
    void followTheme();
};

}  // namespace tendel

#pragma once

#include <QWidget>

namespace tendel {

// A surface on which things stand that belong together.
class Card : public QWidget {
    Q_OBJECT
public:
    explicit Card(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace tendel

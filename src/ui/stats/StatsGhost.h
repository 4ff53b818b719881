#pragma once

#include <QWidget>

namespace tendel {

// What stands in for the statistics before there is anything to count: pale shapes of what will
// appear, and a sentence.
class StatsGhost : public QWidget {
    Q_OBJECT
public:
    explicit StatsGhost(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF chartCard() const;
    QWidget* words_;
};

}  // namespace tendel

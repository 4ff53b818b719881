#pragma once

#include <QFont>

#include <vector>

#include "ui/stats/StatsSentences.h"
#include "ui/theme/Callout.h"
#include "ui/theme/MarkedView.h"

namespace tendel {

// The figures of a range in one row. Each is told as one sentence; what it counts shows while the
// pointer or the keyboard is on it.
class StatsTiles : public MarkedView {
    Q_OBJECT
public:
    explicit StatsTiles(QWidget* parent = nullptr);

    void setTiles(std::vector<StatsSentences::Tile> tiles);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return {0, sizeHint().height()}; }

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void arrange();
    QRectF box(int index) const;
    double textWidth() const;
    void explain();
    void drawTile(QPainter& painter, int index) const;

    std::vector<StatsSentences::Tile> tiles_;
    double figureScale_ = 1;  // of all figures, so that the widest fits
    int noteLines_ = 1;
    Callout* callout_;
};

}  // namespace tendel

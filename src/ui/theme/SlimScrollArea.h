#pragma once

#include <QScrollArea>

namespace tendel {

// Scrolls its content from top to bottom, without a frame, with a thin bar. The bar's room at the
// right is always kept, so that content does not move when it appears. Keys are left to the content
// and to what it stands in.
class SlimScrollArea : public QScrollArea {
    Q_OBJECT
public:
    static constexpr int barWidth = 12;

    explicit SlimScrollArea(QWidget* parent = nullptr);

    // As high as the content.
    QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
};

}  // namespace tendel

#include "ui/panel/PanelPlacement.h"

#include <algorithm>

namespace tendel {

namespace {

constexpr int toEdge = 6;   // of the free part of the screen
constexpr int toIcon = 16;  // from the icon's middle, where no bar is between

}  // namespace

QRect panelFrame(QPoint icon, QSize size, const QRect& available) {
    const QRect inside = available.adjusted(toEdge, toEdge, -toEdge, -toEdge);
    const auto within = [](int wanted, int least, int most) {
        return std::max(least, std::min(wanted, most));
    };
    const bool isBelow = icon.y() <= available.center().y();
    const int left = icon.x() - size.width() / 2;
    const int top = isBelow ? icon.y() + toIcon : icon.y() - toIcon - size.height();
    return {QPoint(within(left, inside.left(), inside.right() + 1 - size.width()),
                   within(top, inside.top(), inside.bottom() + 1 - size.height())),
            size};
}

}  // namespace tendel

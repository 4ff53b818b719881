#pragma once

#include <QRect>

namespace tendel {

// Where a panel of that size stands for an icon at that point: centred under it, over it where the
// icon is in the lower half, and always inside the free part of the screen. A panel too high for it
// loses its lower end.
QRect panelFrame(QPoint icon, QSize size, const QRect& available);

}  // namespace tendel

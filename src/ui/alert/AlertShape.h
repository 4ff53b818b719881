#pragma once

#include <QPainterPath>
#include <QRegion>

#include "alerts/NotchAlertGeometry.h"

namespace tendel {

// The outline as a path that hangs from y = 0 with its middle at x = `middle`. Radii that do not
// fit are made smaller.
QPainterPath alertPath(const AlertOutline& outline, double middle);
// The pixels that the path touches, wholly or in part; one far outside for an empty outline, since
// a window takes an empty region for none at all.
QRegion alertRegion(const AlertOutline& outline, double middle);

}  // namespace tendel

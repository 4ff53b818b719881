#pragma once

#include "platform/linux/wayland/SwaySources.h"
#include "platform/linux/wayland/WaylandIdle.h"
#include "platform/linux/wayland/WaylandOutputPower.h"
#include "presence/UserPresence.h"

namespace tendel {

// All that a Wayland compositor tells, found by WAYLAND_DISPLAY and SWAYSOCK; unknown elsewhere.
// Its windows come before the X server's, which does not see native ones. Main thread only; the
// loop must outlive it.
class WaylandSources {
public:
    explicit WaylandSources(EventLoop& loop);

    // Everything but the idle time, whose place among the sources is the caller's choice.
    void addTo(PresenceSources& sources);
    IdleSource& idle() { return idle_; }

private:
    WaylandConnection connection_;
    WaylandIdle idle_;
    WaylandOutputPower outputPower_;
    SwayIpc sway_;
    SwayTree tree_;
    SwayWindows windows_;
    SwayInhibitors inhibitors_;
};

}  // namespace tendel

#pragma once

#include "platform/linux/x11/X11Connection.h"
#include "platform/linux/x11/X11Idle.h"
#include "platform/linux/x11/X11ScreenSaver.h"
#include "platform/linux/x11/X11Windows.h"
#include "presence/UserPresence.h"

namespace tendel {

// All that an X server tells of the user. Without one everything is unknown.
class X11Sources {
public:
    explicit X11Sources(EventLoop& loop);

    // Whether the server sees all input: not under Wayland.
    enum class Idle { included, leftOut };
    void addTo(PresenceSources& sources, Idle idle);

private:
    X11Connection connection_;
    X11Idle idle_;
    X11ScreenSaver screenSaver_;
    X11Windows windows_;
};

}  // namespace tendel

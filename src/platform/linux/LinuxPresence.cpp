#include "platform/linux/LinuxPresence.h"

#include <unistd.h>

#include <cstdlib>

#include "platform/linux/bus/BusSources.h"
#include "platform/linux/camera/VideoDevices.h"
#include "platform/linux/pulse/PulseMicrophone.h"
#include "platform/linux/wayland/WaylandSources.h"
#include "platform/linux/x11/X11Sources.h"

namespace tendel {

struct LinuxPresence::Parts {
    explicit Parts(EventLoop& loop)
        : wayland(loop), bus(loop), x11(loop), microphone(loop), cameras(loop) {}

    WaylandSources wayland;
    BusSources bus;
    X11Sources x11;
    PulseMicrophone microphone;
    VideoDevices cameras;
};

LinuxPresence::LinuxPresence(EventLoop& loop) : parts_(std::make_unique<Parts>(loop)) {}
LinuxPresence::~LinuxPresence() = default;

PresenceSources LinuxPresence::sources() {
    PresenceSources sources{.microphonePolicy = MicrophonePolicy::forLinux(),
                            .wakePolicy = WakePolicy::forLinux(),
                            .topEdge = TopEdge::compared,
                            .ownPid = getpid()};
    // Under Wayland the X server hears only of the input to its own windows.
    const char* compositor = std::getenv("WAYLAND_DISPLAY");
    const bool isWayland = compositor && *compositor;
    if (isWayland) sources.idle = {&parts_->wayland.idle(), &parts_->bus.mutterIdle()};
    parts_->wayland.addTo(sources);
    parts_->bus.addTo(sources);
    parts_->x11.addTo(sources, isWayland ? X11Sources::Idle::leftOut : X11Sources::Idle::included);
    parts_->microphone.addTo(sources);
    parts_->cameras.addTo(sources);
    return sources;
}

}  // namespace tendel

#include "platform/linux/wayland/WaylandSources.h"

#include <unistd.h>

#include <cstdlib>

namespace tendel {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

}  // namespace

WaylandSources::WaylandSources(EventLoop& loop)
    : connection_(loop, environment("WAYLAND_DISPLAY")),
      idle_(connection_, loop),
      outputPower_(connection_),
      sway_(loop, environment("SWAYSOCK")),
      tree_(loop, sway_),
      windows_(tree_, getpid()),
      inhibitors_(tree_) {}

void WaylandSources::addTo(PresenceSources& sources) {
    sources.system.push_back(&outputPower_);
    sources.wakeRequests.push_back(&inhibitors_);
    sources.windows.push_back(&windows_);
}

}  // namespace tendel

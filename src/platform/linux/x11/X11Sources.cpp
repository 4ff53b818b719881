#include "platform/linux/x11/X11Sources.h"

namespace tendel {

X11Sources::X11Sources(EventLoop& loop)
    : connection_(loop), idle_(connection_), screenSaver_(connection_), windows_(connection_) {}

void X11Sources::addTo(PresenceSources& sources, Idle idle) {
    if (idle == Idle::included) sources.idle.push_back(&idle_);
    sources.system.push_back(&screenSaver_);
    sources.windows.push_back(&windows_);
}

}  // namespace tendel

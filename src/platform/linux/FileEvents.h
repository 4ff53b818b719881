#pragma once

#include <cstdint>
#include <functional>
#include <string_view>

#include "platform/linux/FileDescriptor.h"

namespace tendel {

// One thing that inotify tells, valid while it is told.
struct FileEvent {
    int watch = -1;
    std::uint32_t mask = 0;   // IN_…; with IN_Q_OVERFLOW nobody knows what it was
    std::string_view name{};  // in a watched folder
};

// Reads all that an inotify descriptor has to tell now; it must not block.
void readFileEvents(const FileDescriptor& inotify,
                    const std::function<void(const FileEvent&)>& tell);

}  // namespace tendel

#include "platform/linux/FileEvents.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>

namespace tendel {

void readFileEvents(const FileDescriptor& inotify,
                    const std::function<void(const FileEvent&)>& tell) {
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (;;) {
        const auto size = ::read(inotify.value(), buffer.data(), buffer.size());
        if (size <= 0) return;
        for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
            inotify_event event{};
            std::memcpy(&event, &buffer[at], sizeof event);
            tell({.watch = event.wd,
                  .mask = event.mask,
                  .name = event.len > 0 ? &buffer[at + sizeof event] : ""});
            at += sizeof event + event.len;
        }
    }
}

}  // namespace tendel

#pragma once

#include <memory>

#include "presence/UserPresence.h"

namespace tendel {

// Everything that this desktop can tell of the user. Each source finds out by itself whether its
// part of the desktop is there, and says "unknown" where it is not. Main thread only; the loop must
// outlive it.
class LinuxPresence {
public:
    explicit LinuxPresence(EventLoop& loop);
    ~LinuxPresence();

    // Valid as long as this lives.
    PresenceSources sources();

private:
    struct Parts;
    std::unique_ptr<Parts> parts_;
};

}  // namespace tendel

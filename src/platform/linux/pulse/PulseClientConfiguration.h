#pragma once

#include <QByteArray>

#include <optional>

#include "platform/linux/FileDescriptor.h"

namespace tendel {

// While it lives, libpulse's contexts are made with the user's own client configuration, but
// without shared memory. A server offers a ring buffer over that, and a libpulse (16.1) whose
// server dies before the switch to it is done loops forever in taking the connection down. It also
// saves every connection a descriptor and a mapping that one without streams has no use for.
// Changes the environment: main thread only, and brief.
class PulseClientConfiguration {
public:
    PulseClientConfiguration();
    ~PulseClientConfiguration();
    PulseClientConfiguration(const PulseClientConfiguration&) = delete;
    PulseClientConfiguration& operator=(const PulseClientConfiguration&) = delete;

private:
    FileDescriptor file_;
    std::optional<QByteArray> before_;
};

}  // namespace tendel

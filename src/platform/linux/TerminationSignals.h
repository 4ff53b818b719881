#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

#include "platform/linux/FileDescriptor.h"

namespace tendel {

// Turns SIGTERM, SIGINT and SIGHUP (the session ends, Ctrl+C) into a call on the main thread, so
// that the program can end in order. Make it before any other thread, which must inherit the
// blocked signals. Main thread only.
class TerminationSignals {
public:
    explicit TerminationSignals(std::function<void()> onTerminate);
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

private:
    FileDescriptor descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tendel

#pragma once

#include <QSocketNotifier>

#include <functional>
#include <memory>

#include "platform/linux/FileDescriptor.h"

namespace tendel {

// Turns SIGTERM, SIGINT and SIGHUP (the session ends, Ctrl+C) into a call on the main thread, so
// that the program can end in order. Made first of all, before the toolkit starts its threads,
// which inherit the blocked signals. Main thread only.
class TerminationSignals {
public:
    TerminationSignals();
    ~TerminationSignals();
    TerminationSignals(const TerminationSignals&) = delete;
    TerminationSignals& operator=(const TerminationSignals&) = delete;

    // From now on `onTerminate` is called, also for a signal that came before. Needs the toolkit's
    // application.
    void watch(std::function<void()> onTerminate);

private:
    FileDescriptor descriptor_;
    std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace tendel

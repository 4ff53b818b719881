#pragma once

#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <filesystem>
#include <memory>
#include <optional>

#include "base/TimerQueue.h"
#include "platform/linux/FileDescriptor.h"

namespace tendel {

// The event loop of a Qt program on Linux. Timers run on the clock that goes on through suspend;
// one kernel timer is armed for the next of them alone, so that nothing wakes the computer at
// rest. Needs a QCoreApplication while it lives, and belongs to the thread that made it; only
// `post` may be called from others. What the kernel refuses is logged, and the rest goes on.
class LinuxEventLoop : public EventLoop {
public:
    // `zoneFolder` is where the computer keeps its time zone, as `localtime` and `timezone`.
    explicit LinuxEventLoop(const std::filesystem::path& zoneFolder = "/etc");
    ~LinuxEventLoop() override;
    LinuxEventLoop(const LinuxEventLoop&) = delete;
    LinuxEventLoop& operator=(const LinuxEventLoop&) = delete;

    Instant now() const override;
    MonotonicInstant monotonicNow() const override;
    TimerId schedule(MonotonicInstant due, std::function<void()> task) override;
    void cancel(TimerId id) override;
    void post(std::function<void()> task) override;

private:
    // A descriptor and who is told when it can be read; the notifier goes before it closes.
    struct Source {
        FileDescriptor descriptor;
        std::unique_ptr<QSocketNotifier> notifier;
    };

    void open(Source& source, FileDescriptor descriptor, void (LinuxEventLoop::*onReadable)());
    void watchWallClock();
    void watchZone(const std::filesystem::path& folder);
    void arm();
    void deadlineCame();
    void wallClockMoved();
    void zoneFolderChanged();
    Duration wallOffset() const {
        return now().time_since_epoch() - monotonicNow().time_since_epoch();
    }

    TimerQueue timers_;
    std::optional<MonotonicInstant> armedFor_;
    Duration knownWallOffset_{};
    QObject mainThread_;  // posted tasks are its events, and go with it
    QTimer spareTimer_;   // where the kernel has no timer descriptors; stands still in suspend
    Source deadline_;
    Source clockSteps_;
    Source zoneFiles_;
};

}  // namespace tendel

#include "platform/linux/LinuxEventLoop.h"

#include <sys/inotify.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "base/Log.h"
#include "platform/linux/FileEvents.h"

namespace tendel {

namespace {

using std::chrono::milliseconds;

// Two clocks cannot be read at once; a smaller step than this does not matter to anyone.
constexpr Duration smallestStep = milliseconds(100);

void warn(const std::string& what) {
    log(LogLevel::warning, "eventloop", what + ": " + std::strerror(errno));
}

timespec toTimespec(Duration sinceEpoch) {
    const auto whole = std::chrono::floor<std::chrono::seconds>(sinceEpoch);
    timespec time{};
    time.tv_sec = whole.count();
    time.tv_nsec = std::chrono::nanoseconds(sinceEpoch - whole).count();
    return time;
}

// How often a timer descriptor ran out since the last look; negative when it has nothing to say
// (see errno).
std::int64_t takeExpirations(const FileDescriptor& descriptor) {
    std::uint64_t count = 0;
    return ::read(descriptor.value(), &count, sizeof count) == sizeof count
               ? static_cast<std::int64_t>(count)
               : -1;
}

}  // namespace

LinuxEventLoop::LinuxEventLoop(const std::filesystem::path& zoneFolder) {
    spareTimer_.setSingleShot(true);
    QObject::connect(&spareTimer_, &QTimer::timeout, &mainThread_, [this] { deadlineCame(); });

    FileDescriptor timer(::timerfd_create(CLOCK_BOOTTIME, TFD_NONBLOCK | TFD_CLOEXEC));
    if (!timer) warn("Couldn't make a timer that goes on through suspend");
    open(deadline_, std::move(timer), &LinuxEventLoop::deadlineCame);
    watchWallClock();
    watchZone(zoneFolder);
}

LinuxEventLoop::~LinuxEventLoop() = default;

void LinuxEventLoop::open(Source& source, FileDescriptor descriptor,
                          void (LinuxEventLoop::*onReadable)()) {
    if (!descriptor) return;
    source.notifier = std::make_unique<QSocketNotifier>(descriptor.value(), QSocketNotifier::Read);
    QObject::connect(source.notifier.get(), &QSocketNotifier::activated, &mainThread_,
                     [this, onReadable] { (this->*onReadable)(); });
    source.descriptor = std::move(descriptor);
}

Instant LinuxEventLoop::now() const {
    return std::chrono::floor<Duration>(std::chrono::system_clock::now());
}

MonotonicInstant LinuxEventLoop::monotonicNow() const {
    timespec time{};
    ::clock_gettime(CLOCK_BOOTTIME, &time);
    return MonotonicInstant(std::chrono::seconds(time.tv_sec) +
                            std::chrono::floor<Duration>(std::chrono::nanoseconds(time.tv_nsec)));
}

TimerId LinuxEventLoop::schedule(MonotonicInstant due, std::function<void()> task) {
    const TimerId id = timers_.add(due, std::move(task));
    arm();
    return id;
}

void LinuxEventLoop::cancel(TimerId id) {
    timers_.remove(id);
    arm();
}

void LinuxEventLoop::post(std::function<void()> task) {
    QMetaObject::invokeMethod(&mainThread_, std::move(task), Qt::QueuedConnection);
}

// Sets the kernel's timer to the next deadline, or switches it off when there is none.
void LinuxEventLoop::arm() {
    const auto due = timers_.nextDue();
    if (due == armedFor_) return;
    armedFor_ = due;
    if (deadline_.descriptor) {
        itimerspec setting{};
        // All zero switches the timer off, so a deadline of the distant past is a little later.
        if (due) setting.it_value = toTimespec(std::max(due->time_since_epoch(), Duration(1)));
        if (::timerfd_settime(deadline_.descriptor.value(), TFD_TIMER_ABSTIME, &setting, nullptr) ==
            0)
            return;
        warn("Couldn't set the timer");
    }
    if (!due) {
        spareTimer_.stop();
        return;
    }
    const auto wait = std::chrono::ceil<milliseconds>(*due - monotonicNow());
    constexpr milliseconds longest = std::chrono::hours(24);
    spareTimer_.setTimerType(Qt::PreciseTimer);
    spareTimer_.start(std::clamp(wait, milliseconds(0), longest));
}

void LinuxEventLoop::deadlineCame() {
    if (deadline_.descriptor) takeExpirations(deadline_.descriptor);
    armedFor_.reset();
    timers_.runDue(monotonicNow());
    arm();
}

void LinuxEventLoop::watchWallClock() {
    knownWallOffset_ = wallOffset();
    FileDescriptor timer(::timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC));
    // Never meant to run out: the kernel cancels it when somebody sets the clock.
    itimerspec never{};
    never.it_value = toTimespec(std::chrono::days(365 * 250));
    if (!timer || ::timerfd_settime(timer.value(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET,
                                    &never, nullptr) != 0) {
        warn("Couldn't watch for the clock being set");
        return;
    }
    open(clockSteps_, std::move(timer), &LinuxEventLoop::wallClockMoved);
}

void LinuxEventLoop::wallClockMoved() {
    takeExpirations(clockSteps_.descriptor);
    // The kernel also tells of every wake-up from suspend, through which both clocks went on.
    const Duration offset = wallOffset();
    if (std::chrono::abs(offset - knownWallOffset_) < smallestStep) return;
    knownWallOffset_ = offset;
    wallClockChanged.emit();
}

void LinuxEventLoop::watchZone(const std::filesystem::path& folder) {
    FileDescriptor watcher(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    // The folder, not the files: they are replaced rather than written.
    if (!watcher ||
        ::inotify_add_watch(watcher.value(), folder.c_str(),
                            IN_ONLYDIR | IN_CREATE | IN_CLOSE_WRITE | IN_MOVED_TO) < 0) {
        warn("Couldn't watch \"" + folder.string() + "\" for the time zone being set");
        return;
    }
    open(zoneFiles_, std::move(watcher), &LinuxEventLoop::zoneFolderChanged);
}

void LinuxEventLoop::zoneFolderChanged() {
    bool isZone = false;
    readFileEvents(zoneFiles_.descriptor, [&](const FileEvent& event) {
        isZone |=
            event.name == "localtime" || event.name == "timezone" || (event.mask & IN_Q_OVERFLOW);
    });
    if (isZone) timeZoneChanged.emit();
}

}  // namespace tendel

// Put in front of the C library (LD_PRELOAD), it gives one program a wall clock and a time zone
// setting of its own, which a case moves while the program runs; those of the computer stay as they
// are. What the program does about it is all its own: the kernel's timers, inotify and ICU work as
// ever.
//
//   MOVABLE_CLOCK_OFFSET  a file of one 64-bit number: the seconds by which the wall clock is ahead
//   of the computer's.
//                         After it was written, SIGUSR2 wakes who waits for the clock to be set.
//   MOVABLE_CLOCK_ETC     the folder that stands for /etc where the time zone is looked for and
//   watched.

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace {

std::int64_t noOffset = 0;
const volatile std::int64_t* offset = &noOffset;
const char* etc = nullptr;
std::atomic<int> watchedTimer = -1;

template <class Function>
Function* next(Function*, const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

// The kernel cancels such a timer when the clock is set; from outside it can only be made to run
// out, which is readable all the same.
void clockWasSet(int) {
    itimerspec atOnce{};
    atOnce.it_value.tv_nsec = 1;
    if (watchedTimer >= 0) syscall(SYS_timerfd_settime, watchedTimer.load(), 0, &atOnce, nullptr);
}

[[gnu::constructor]] void setUp() {
    etc = std::getenv("MOVABLE_CLOCK_ETC");
    const char* file = std::getenv("MOVABLE_CLOCK_OFFSET");
    const int descriptor = file ? open(file, O_RDONLY | O_CLOEXEC) : -1;
    if (descriptor < 0) return;
    void* mapped = mmap(nullptr, sizeof *offset, PROT_READ, MAP_SHARED, descriptor, 0);
    close(descriptor);
    if (mapped == MAP_FAILED) return;
    offset = static_cast<const std::int64_t*>(mapped);
    std::signal(SIGUSR2, clockWasSet);
}

}  // namespace

extern "C" {

int clock_gettime(clockid_t clock, timespec* time) noexcept {
    static auto* const real = next(&clock_gettime, "clock_gettime");
    const int result = real(clock, time);
    if (clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) time->tv_sec += *offset;
    return result;
}

int gettimeofday(timeval* time, void* zone) noexcept {
    static auto* const real = next(&gettimeofday, "gettimeofday");
    const int result = real(time, zone);
    time->tv_sec += *offset;
    return result;
}

time_t time(time_t* result) noexcept {
    timespec now{};
    clock_gettime(CLOCK_REALTIME, &now);
    if (result) *result = now.tv_sec;
    return now.tv_sec;
}

int timerfd_settime(int timer, int flags, const itimerspec* value, itimerspec* old) noexcept {
    static auto* const real = next(&timerfd_settime, "timerfd_settime");
    if (flags & TFD_TIMER_CANCEL_ON_SET) watchedTimer = timer;
    return real(timer, flags, value, old);
}

int inotify_add_watch(int watcher, const char* name, std::uint32_t mask) noexcept {
    static auto* const real = next(&inotify_add_watch, "inotify_add_watch");
    return real(watcher, etc && std::strcmp(name, "/etc") == 0 ? etc : name, mask);
}

ssize_t readlink(const char* name, char* target, size_t size) noexcept {
    static auto* const real = next(&readlink, "readlink");
    if (!etc || std::strcmp(name, "/etc/localtime") != 0) return real(name, target, size);
    return real((std::string(etc) + "/localtime").c_str(), target, size);
}

}  // extern "C"

#include "platform/linux/camera/VideoDevices.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <string_view>
#include <utility>

#include "base/Log.h"
#include "platform/linux/FileEvents.h"

namespace tendel {

namespace {

bool isVideoDevice(std::string_view name) {
    constexpr std::string_view prefix = "video";
    return name.starts_with(prefix) && name.size() > prefix.size() &&
           std::all_of(name.begin() + prefix.size(), name.end(),
                       [](char letter) { return letter >= '0' && letter <= '9'; });
}

struct DirectoryCloser {
    void operator()(DIR* directory) const { ::closedir(directory); }
};
using Directory = std::unique_ptr<DIR, DirectoryCloser>;

// The names in a folder; none when it cannot be read.
template <class Visit>
void forEachName(DIR* directory, Visit visit) {
    if (!directory) return;
    while (const dirent* entry = ::readdir(directory))
        visit(entry->d_name);
}

}  // namespace

std::set<std::string> cameraBrokers() {
    return {
        "pipewire",     // the daemon, for the devices that it offers as sources
        "wireplumber",  // its session managers, which probe and then watch the controls
        "pipewire-media-",
        "v4l2-relayd",  // feeds a loopback device from cameras that have no device of their own
    };
}

VideoDevices::VideoDevices(EventLoop& loop, const std::filesystem::path& deviceFolder,
                           std::filesystem::path processFolder, std::set<std::string> brokers)
    : loop_(loop), processFolder_(std::move(processFolder)), brokers_(std::move(brokers)) {
    std::error_code error;
    deviceFolder_ = std::filesystem::canonical(deviceFolder, error);  // as /proc names it
    events_ = FileDescriptor(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC));
    if (events_ && !error)
        // Attributes too: the user may be allowed to read a device after it has appeared.
        folderWatch_ = ::inotify_add_watch(events_.value(), deviceFolder_.c_str(),
                                           IN_ONLYDIR | IN_CREATE | IN_DELETE | IN_MOVED_FROM |
                                               IN_MOVED_TO | IN_ATTRIB | IN_DELETE_SELF);
    if (folderWatch_ < 0) {
        log(LogLevel::warning, "camera",
            "Couldn't watch \"" + deviceFolder.string() +
                "\": " + (error ? error.message() : std::strerror(errno)));
        return;
    }
    notifier_ = std::make_unique<QSocketNotifier>(events_.value(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { read(); });
    listDevices();
    told_ = running();
}

std::optional<std::vector<std::optional<bool>>> VideoDevices::running() const {
    if (folderWatch_ < 0) return std::nullopt;
    std::vector<std::optional<bool>> all;
    for (const auto& [path, device] : devices_)
        all.push_back(device.isRunning);
    return all;
}

void VideoDevices::read() {
    bool isListOld = false;
    bool isUseOld = false;
    readFileEvents(events_, [&](const FileEvent& event) {
        const bool isOverflow = event.mask & IN_Q_OVERFLOW;
        isListOld |= isOverflow || (event.watch == folderWatch_ && isVideoDevice(event.name));
        isUseOld |= isOverflow || (event.mask & (IN_OPEN | IN_CLOSE));
        if (event.mask & IN_IGNORED) {
            if (event.watch == folderWatch_) folderWatch_ = -1;
            for (auto& [path, device] : devices_)
                if (device.watch == event.watch) device.watch = -1;
            isListOld = true;
        }
    });
    if (isListOld) listDevices();
    if (isUseOld) lookSoon();
    tellIfChanged();
}

void VideoDevices::listDevices() {
    std::map<std::string, Device> found;
    bool hasNew = false;
    const Directory folder(folderWatch_ < 0 ? nullptr : ::opendir(deviceFolder_.c_str()));
    forEachName(folder.get(), [&](const char* name) {
        if (!isVideoDevice(name)) return;
        const std::string path = deviceFolder_ / name;
        // Watching again what is watched changes nothing, and what has another inode by now (taken
        // away and put back at once) is another device.
        const int watch = ::inotify_add_watch(events_.value(), path.c_str(), IN_OPEN | IN_CLOSE);
        const auto known = devices_.find(path);
        if (known != devices_.end() && known->second.watch == watch) {
            found.insert(*known);
            return;
        }
        found[path].watch = watch;
        hasNew |= watch >= 0;
    });
    devices_ = std::move(found);
    if (hasNew) lookSoon();
}

void VideoDevices::lookSoon() {
    const MonotonicInstant now = loop_.monotonicNow();
    if (!firstEvent_) firstEvent_ = now;
    lookTimer_.startAt(std::min(now + quietTime, *firstEvent_ + longestWait), [this] { look(); });
}

void VideoDevices::look() {
    firstEvent_.reset();
    const std::set<std::string> open = openDevices();
    for (auto& [path, device] : devices_)
        if (device.watch >= 0) device.isRunning = open.contains(path);
    tellIfChanged();
}

void VideoDevices::tellIfChanged() {
    if (auto now = running(); now != told_) {
        told_ = std::move(now);
        changed.emit();
    }
}

// The paths that processes other than brokers have open.
std::set<std::string> VideoDevices::openDevices() const {
    std::set<std::string> open;
    const Directory processes(::opendir(processFolder_.c_str()));
    forEachName(processes.get(), [&](const char* process) {
        if (process[0] < '0' || process[0] > '9') return;
        const std::filesystem::path folder = processFolder_ / process;
        const Directory descriptors(::opendir((folder / "fd").c_str()));
        std::set<std::string> found;
        forEachName(descriptors.get(), [&](const char* descriptor) {
            std::array<char, PATH_MAX> target;
            const auto size =
                ::readlinkat(::dirfd(descriptors.get()), descriptor, target.data(), target.size());
            if (size <= 0) return;
            std::string path(target.data(), static_cast<std::size_t>(size));
            if (devices_.contains(path)) found.insert(std::move(path));
        });
        if (found.empty()) return;
        std::string name;
        std::getline(std::ifstream(folder / "comm"), name);
        if (!brokers_.contains(name)) open.merge(found);
    });
    return open;
}

}  // namespace tendel

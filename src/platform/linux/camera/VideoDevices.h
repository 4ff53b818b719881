#pragma once

#include <QSocketNotifier>

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Timer.h"
#include "platform/linux/FileDescriptor.h"
#include "presence/CallMonitor.h"
#include "presence/UserPresence.h"

namespace tendel {

// Programs that hold cameras open for others, also while no picture is taken, by the names that the
// kernel keeps of them (its first 15 letters): a camera that only these have open is not in use.
std::set<std::string> cameraBrokers();

// The cameras of Video4Linux. One is running while a process other than a broker has it open; the
// kernel tells no unprivileged program whether it streams. The opening and closing is told by
// inotify, who it was by /proc: of the own user's processes alone. Programs that look for cameras
// open each for a moment; so /proc is looked at when nothing has been opened or closed for a
// moment, and after a longer one at the latest. Main thread only.
class VideoDevices : public CameraSource {
public:
    explicit VideoDevices(EventLoop& loop, const std::filesystem::path& deviceFolder = "/dev",
                          std::filesystem::path processFolder = "/proc",
                          std::set<std::string> brokers = cameraBrokers());

    // In the order of the devices' names. A device that cannot be watched cannot tell; neither can
    // one just after it has appeared.
    std::optional<std::vector<std::optional<bool>>> running() const override;
    void addTo(PresenceSources& sources) { sources.cameras.push_back(this); }

    static constexpr Duration quietTime = std::chrono::milliseconds(200);
    static constexpr Duration longestWait = std::chrono::milliseconds(600);

private:
    struct Device {
        int watch = -1;
        std::optional<bool> isRunning;
    };

    void read();
    void listDevices();
    void look();
    void lookSoon();
    void tellIfChanged();
    std::set<std::string> openDevices() const;

    EventLoop& loop_;
    std::filesystem::path deviceFolder_;
    std::filesystem::path processFolder_;
    std::set<std::string> brokers_;
    FileDescriptor events_;
    int folderWatch_ = -1;
    std::map<std::string, Device> devices_;  // by path
    std::optional<std::vector<std::optional<bool>>> told_;
    std::optional<MonotonicInstant> firstEvent_;  // of those after the last look
    Timer lookTimer_{loop_};
    std::unique_ptr<QSocketNotifier> notifier_;  // last member: goes first
};

}  // namespace tendel

#include "platform/linux/camera/VideoDevices.h"

#include <gtest/gtest.h>

#include <fstream>

#include "base/SimulatedEventLoop.h"
#include "platform/linux/LinuxEventLoop.h"
#include "support/RunningLoop.h"
#include "support/TemporaryFolder.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

// A letter a camera: y(es), n(o) or ?.
std::string letters(const VideoDevices& devices) {
    const auto running = devices.running();
    if (!running) return "unknown";
    std::string all;
    for (const auto& each : *running)
        all += !each ? '?' : *each ? 'y' : 'n';
    return all;
}

class VideoDevicesTest : public ::testing::Test {
protected:
    VideoDevicesTest() { fs::create_directory(folder_ / "proc"); }

    fs::path plugIn(const std::string& name) {
        std::ofstream(folder_ / name) << "picture";
        return folder_ / name;
    }
    // What is told as soon as it is that, or in the end.
    static std::string told(const VideoDevices& devices, const std::string& expected) {
        test::runUntil([&] { return letters(devices) == expected; });
        return letters(devices);
    }
    // Another program with the device open, once it has.
    static std::unique_ptr<test::Child> open(const fs::path& device) {
        auto program = std::make_unique<test::Child>();
        program->start("sh", {"-c", "exec <\"$0\"; echo; exec sleep 60", device.c_str()});
        program->firstLine();
        return program;
    }

    test::Application application_;
    LinuxEventLoop loop_;
    test::TemporaryFolder temporary_;
    const fs::path folder_ = temporary_.path;
};

TEST_F(VideoDevicesTest, TellsWhichCameraIsOpened) {
    VideoDevices devices(loop_, folder_);
    int changes = 0;
    const Subscription keep = devices.changed.connect([&] { ++changes; });
    EXPECT_EQ(letters(devices), "") << "no camera";

    const auto first = plugIn("video0");
    EXPECT_EQ(told(devices, "n"), "n") << "plugged in";
    const auto second = plugIn("video1");
    plugIn("videotape");
    EXPECT_EQ(told(devices, "nn"), "nn");
    changes = 0;
    const auto call = open(second);
    EXPECT_EQ(told(devices, "ny"), "ny");
    const auto other = open(second);
    call->end();
    test::runFor(900);
    EXPECT_EQ(letters(devices), "ny") << "another still has it";
    other->end();
    EXPECT_EQ(told(devices, "nn"), "nn");
    EXPECT_EQ(changes, 2) << "only differences are told";

    const auto last = open(first);
    EXPECT_EQ(told(devices, "yn"), "yn");
    fs::remove(first);
    EXPECT_EQ(told(devices, "n"), "n") << "unplugged in use";
    last->end();
    fs::remove_all(folder_);
    EXPECT_EQ(told(devices, "unknown"), "unknown") << "nothing to look at any more";
}

TEST_F(VideoDevicesTest, TakesNoProbeForACallButACallAtOnce) {
    const auto device = plugIn("video0");
    SimulatedEventLoop clock(Instant{});
    VideoDevices devices(clock, folder_);
    EXPECT_EQ(letters(devices), "?") << "not looked yet";
    // Opens or closes something, and lets some time pass after that was told.
    const auto after = [&](Duration span) {
        QCoreApplication::processEvents();
        clock.advance(span);
        return letters(devices);
    };
    ASSERT_EQ(after(VideoDevices::quietTime), "n");

    std::ifstream probe(device);
    EXPECT_EQ(after(150ms), "n");
    probe.close();
    EXPECT_EQ(after(150ms), "n") << "the time begins anew";
    EXPECT_EQ(after(1s), "n");

    const std::ifstream call(device);
    EXPECT_EQ(after(VideoDevices::quietTime), "y");

    const auto other = plugIn("video1");
    EXPECT_EQ(after(1s), "yn");
    const std::ifstream second(other);
    std::string seen;
    for (int again = 0; again < 4; ++again) {
        std::ifstream{other};
        seen += after(150ms) + " ";
    }
    EXPECT_EQ(seen, "yn yn yn yy ") << "and does not begin anew for ever";
}

TEST_F(VideoDevicesTest, LeavesOutBrokersAndToleratesWhatItMayNotRead) {
    const auto device = plugIn("video0");
    const auto process = [&](const std::string& id, const std::string& name) {
        fs::create_directories(folder_ / "proc" / id / "fd");
        std::ofstream(folder_ / "proc" / id / "comm") << name << '\n';
        fs::create_symlink(device, folder_ / "proc" / id / "fd" / "3");
    };
    process("10", "wireplumber");
    process("self", "not a process");
    fs::create_directories(folder_ / "proc" / "11");  // another user's, or gone meanwhile
    VideoDevices devices(loop_, folder_, folder_ / "proc");
    EXPECT_EQ(told(devices, "n"), "n");
    process("12", "meeting");
    const std::ifstream opened(device);
    EXPECT_EQ(told(devices, "y"), "y");

    EXPECT_FALSE(VideoDevices(loop_, folder_ / "absent").running());
}

}  // namespace
}  // namespace tendel

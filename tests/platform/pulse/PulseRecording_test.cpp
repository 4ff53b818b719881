#include "platform/linux/pulse/PulseRecording.h"

#include <gtest/gtest.h>
#include <unistd.h>

namespace tendel {
namespace {

using Properties = PulseRecording::Properties;

constexpr auto pid = "application.process.id";
constexpr auto binary = "application.process.binary";
constexpr auto name = "application.name";

class PulseRecordingTest : public ::testing::Test {
protected:
    PulseRecordingTest() {
        addProcess(70, "/usr/bin/caller");
        addProcess(71, "/opt/app/updated (deleted)");
        addProcess(72, "/usr/bin/pipewire");
        addProcess(73, "/usr/bin/tendel");
        std::filesystem::create_directories(processes_ / "74");
    }
    ~PulseRecordingTest() override { std::filesystem::remove_all(processes_); }

    void addProcess(int number, const char* executable) {
        const auto folder = processes_ / std::to_string(number);
        std::filesystem::create_directories(folder);
        std::filesystem::create_symlink(executable, folder / "exe");
    }

    const std::filesystem::path processes_ =
        std::filesystem::temp_directory_path() / ("tendel-pulse-" + std::to_string(::getpid()));
};

TEST_F(PulseRecordingTest, TellsTheProgramAsFarAsItIsCertain) {
    struct Case {
        const char* what;
        Properties stream, client;
        std::optional<MicrophoneUser> expected;
    };
    const Case cases[] = {
        {"told by the stream",
         {{pid, "70"}, {binary, "caller"}, {name, "Caller"}, {"application.id", "org.caller"}},
         {{pid, "71"}, {binary, "updated"}, {name, "Other"}},
         MicrophoneUser{
             .pid = 70, .bundleID = "org.caller", .path = "/usr/bin/caller", .name = "Caller"}},
        {"told by the client alone, and replaced since it began",
         {},
         {{pid, "71"}, {binary, "updated"}},
         MicrophoneUser{.pid = 71, .path = "/opt/app/updated", .name = "updated"}},
        {"the kernel's word on a native client",
         {{pid, "2"}},
         {{"pipewire.sec.pid", "70"}, {binary, "caller"}},
         MicrophoneUser{.pid = 70, .path = "/usr/bin/caller", .name = "caller"}},
        {"which is the server's on one that came through it",
         {{pid, "70"}, {binary, "caller"}},
         {{"pipewire.sec.pid", "72"}, {"client.api", "pipewire-pulse"}},
         MicrophoneUser{.pid = 70, .path = "/usr/bin/caller", .name = "caller"}},
        {"another process has the number that a sandbox gave",
         {{pid, "70"}, {binary, "boxed"}, {name, "Boxed"}},
         {{"pipewire.access.portal.app_id", "org.boxed"}},
         MicrophoneUser{.bundleID = "org.boxed", .path = "boxed", .name = "Boxed"}},
        {"even when that process is this one",
         {{pid, "73"}, {binary, "boxed"}},
         {},
         MicrophoneUser{.path = "boxed", .name = "boxed"}},
        {"a process that may not be looked into",
         {{pid, "74"}, {binary, "/usr/bin/secret"}},
         {},
         MicrophoneUser{.path = "secret", .name = "secret"}},
        {"nothing known or nonsense", {{pid, "-70x"}}, {}, MicrophoneUser{}},
        {"the audio server's own filter", {{pid, "72"}, {binary, "pipewire"}}, {}, std::nullopt},
        {"an audio server in a sandbox", {{pid, "9"}, {binary, "pulseaudio"}}, {}, std::nullopt},
        {"this process", {{pid, "73"}, {binary, "tendel"}}, {}, std::nullopt},
    };
    for (const Case& c : cases) {
        PulseRecording recording{.client = 1, .properties = c.stream, .clientProperties = c.client};
        EXPECT_EQ(recording.user(73, processes_), c.expected) << c.what;
        recording.client.reset();
        EXPECT_EQ(recording.user(73, processes_), std::nullopt) << c.what << ", of a module";
    }
}

TEST_F(PulseRecordingTest, TellsMetersAndWhatPlaysFromWhatIsSaid) {
    struct Case {
        PulseRecording recording;
        bool recordsPlayback, metersLevel;
    };
    const Case cases[] = {
        {{.resampleMethod = "speex-float-1"}, false, false},
        {{.properties = {{"stream.monitor", "false"}, {"media.name", "Peak"}}}, false, false},
        {{.isFromMonitor = true}, true, false},
        {{.properties = {{"stream.capture.sink", "true"}}}, true, false},
        {{.resampleMethod = "peaks"}, false, true},
        {{.properties = {{"stream.monitor", "true"}}}, false, true},
        {{.isFromMonitor = true, .properties = {{"media.name", "Peak detect"}}}, true, true},
    };
    for (Case c : cases) {
        SCOPED_TRACE(::testing::PrintToString(c.recording.properties));
        c.recording.client = 1;
        const auto user = c.recording.user(73, processes_);
        ASSERT_TRUE(user);
        EXPECT_EQ(user->recordsPlayback, c.recordsPlayback);
        EXPECT_EQ(user->metersLevel, c.metersLevel);
    }
}

}  // namespace
}  // namespace tendel

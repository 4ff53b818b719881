#include "platform/linux/pulse/PulseRecording.h"

#include <gtest/gtest.h>

#include "support/TemporaryFolder.h"

namespace tendel {
namespace {

using Properties = PulseRecording::Properties;

constexpr auto pid = "application.process.id";
constexpr auto binary = "application.process.binary";
constexpr auto name = "application.name";

class PulseRecordingTest : public ::testing::Test {
protected:
    PulseRecordingTest() {
        for (const auto& [number, executable] : {std::pair("70", "/usr/bin/caller"),
                                                 {"71", "/opt/app/updated (deleted)"},
                                                 {"72", "/usr/bin/pipewire"},
                                                 {"73", "/usr/bin/tendel"}}) {
            std::filesystem::create_directory(folder_.path / number);
            std::filesystem::create_symlink(executable, folder_.path / number / "exe");
        }
        std::filesystem::create_directory(folder_.path / "74");
    }

    test::TemporaryFolder folder_;
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
        EXPECT_EQ(recording.user(73, folder_.path), c.expected) << c.what;
        recording.client.reset();
        EXPECT_EQ(recording.user(73, folder_.path), std::nullopt) << c.what << ", of a module";
    }
}

}  // namespace
}  // namespace tendel

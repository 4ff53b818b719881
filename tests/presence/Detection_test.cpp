#include <gtest/gtest.h>

#include "base/SimulatedEventLoop.h"
#include "support/FakeFacts.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;

TEST(MicrophonePolicy, TellsWhoseRecordingIsACall) {
    const auto apple = MicrophonePolicy::macOS();
    const auto linux_ = MicrophonePolicy::forLinux();
    const struct {
        const MicrophonePolicy& policy;
        MicrophoneUser user;
        bool counts;
    } cases[] = {
        {apple, {.bundleID = "com.apple.FaceTime", .path = "/System/Applications/x"}, true},
        {apple, {.path = "/usr/libexec/avconferenced"}, true},
        {apple, {.path = "/System/Library/com.apple.WebKit.GPU"}, true},
        {apple, {.path = "/Applications/com.apple.WebKit/x"}, true},
        {apple, {.bundleID = "com.apple.Siri", .path = "/Applications/Siri"}, false},
        {apple, {.bundleID = "com.applet.Talk", .path = "/Applications/Talk"}, true},
        {apple, {.path = "/usr/sbin/coreaudiod"}, false},
        {apple, {.path = "/usr/bin/rec"}, false},
        {apple, {.path = "/usr/local/bin/rec"}, true},
        {apple, {.bundleID = "us.zoom.xos", .path = "/Applications/zoom.us"}, true},
        {apple, {.bundleID = "com.apple.QuickTimePlayerX"}, true},
        {apple, {.path = "/System/Applications/VoiceMemos"}, true},
        {apple, {}, true},

        {linux_, {.path = "/usr/bin/firefox", .name = "Firefox"}, true},
        {linux_, {.path = "/opt/zoom/zoom", .name = "ZOOM VoiceEngine"}, true},
        {linux_, {.path = "/usr/bin/parec"}, true},
        {linux_, {.name = "Chromium"}, true},  // in a sandbox: no path
        {linux_, {.path = "/usr/bin/firefox", .recordsPlayback = true}, false},
        {linux_, {.path = "/usr/bin/anything", .metersLevel = true}, false},
        {linux_, {.bundleID = "org.PulseAudio.pavucontrol"}, false},
        {linux_, {.path = "/usr/bin/easyeffects"}, false},
        {linux_, {.name = "speech-dispatcher"}, false},
        {linux_, {.bundleID = "org.gnome.Shell"}, false},
        {linux_, {}, true},
    };
    for (const auto& each : cases)
        EXPECT_EQ(each.policy.countsAsCall(each.user), each.counts)
            << (&each.policy == &apple ? "macOS: " : "Linux: ") << each.user.bundleID << " "
            << each.user.path << " " << each.user.name;
}

TEST(CallMonitor, LeavesOutOurselvesAndWhatCannotBeRead) {
    SimulatedEventLoop loop(Instant{});
    test::FakeFacts one(loop), two(loop);
    const CallMonitor calls({&one.microphone, &two.microphone}, {&one.camera, &two.camera},
                            MicrophonePolicy::forLinux(), test::FakeFacts::ownPid);
    // Of each source: o is us, m a meter, u a user; - tells nothing.
    const auto users = [](std::string_view letters) {
        std::optional<std::vector<MicrophoneUser>> all(std::in_place);
        for (const char c : letters)
            all->push_back(
                {.pid = c == 'o' ? test::FakeFacts::ownPid : 7, .metersLevel = c == 'm'});
        return letters == "-" ? std::nullopt : all;
    };
    for (const auto& [first, second, inUse] : {std::tuple("", "", std::optional(false)),
                                               {"o", "-", false},
                                               {"omu", "-", true},
                                               {"m", "u", true},
                                               {"-", "", false},
                                               {"-", "-", std::nullopt}}) {
        one.microphone.found = users(first);
        two.microphone.found = users(second);
        EXPECT_EQ(calls.isMicrophoneInUse(), inUse) << first << ", " << second;
    }
    // Cameras: n is off, y runs, ? cannot be read.
    const auto cameras = [](std::string_view letters) {
        std::optional<std::vector<std::optional<bool>>> all(std::in_place);
        for (const char c : letters)
            all->push_back(c == '?' ? std::nullopt : std::optional(c == 'y'));
        return letters == "-" ? std::nullopt : all;
    };
    for (const auto& [first, second, inUse] : {std::tuple("", "", std::optional(false)),
                                               {"n?", "-", false},
                                               {"?y", "-", true},
                                               {"n", "y", true},
                                               {"-", "-", std::nullopt}}) {
        one.camera.found = cameras(first);
        two.camera.found = cameras(second);
        EXPECT_EQ(calls.isCameraInUse(), inUse) << first << ", " << second;
    }
}

TEST(DisplayWakeRequests, CountsWhoWatchesTheDisplay) {
    const auto apple = WakePolicy::macOS();
    const auto linux_ = WakePolicy::forLinux();
    constexpr std::int32_t own = 4711;
    const struct {
        const WakePolicy& policy;
        std::vector<WakeRequest> requests;
        bool keeps;
    } cases[] = {
        {apple, {}, false},
        {apple, {{1, "caffeinate", "PreventUserIdleDisplaySleep"}}, false},
        {apple, {{1, "Amphetamine", "NoDisplaySleepAssertion"}}, false},
        {apple, {{1, "VLC", "PreventUserIdleSystemSleep"}}, false},
        {apple, {{own, "Tendel", "NoDisplaySleepAssertion"}}, false},
        {apple, {{1, "VLC", "PreventUserIdleDisplaySleep"}}, true},
        {apple,
         {{1, "caffeinate", "PreventUserIdleDisplaySleep"},
          {2, "Keynote", "NoDisplaySleepAssertion"}},
         true},
        {linux_, {{0, "firefox", "idle"}}, true},
        {linux_, {{0, "firefox", "sleep"}}, false},
        {linux_, {{0, "app.tendel.Tendel", "idle"}}, false},
        {linux_, {{own, "anything", "idle"}}, false},
        {linux_, {{0, "caffeine-ng", "idle"}, {0, "user", "idle"}}, false},
        {linux_, {{0, "caffeine-ng", "idle"}, {0, "mpv", "idle"}}, true},
    };
    for (std::size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(DisplayWakeRequests::keepsDisplayAwake(cases[i].requests, own, cases[i].policy),
                  cases[i].keeps)
            << i;

    SimulatedEventLoop loop(Instant{});
    test::FakeFacts one(loop), two(loop);
    const DisplayWakeRequests all({&one.wakeRequests, &two.wakeRequests}, linux_, own);
    one.setFilm(true);
    two.wakeRequests.found.reset();
    ASSERT_TRUE(all.current());
    EXPECT_TRUE(all.keepsDisplayAwake(*all.current()));
    one.wakeRequests.found.reset();
    EXPECT_EQ(all.current(), std::nullopt);
}

TEST(FullScreenDetection, SeesWhatCoversAScreen) {
    using Window = FullScreenDetection::Window;
    const Rect screen{100, 0, 1000, 800};
    const auto window = [](double left, double top, double right, double bottom) {
        return Window{.layer = 0, .bounds = {left, top, right - left, bottom - top}};
    };
    const auto dock = [&](double inset) {
        Window panel = window(100 + inset, inset, 1100 - inset, 800 - inset);
        panel.isDock = true;
        return panel;
    };
    Window maximized = window(100, 0, 1100, 800);
    maximized.isMaximized = true;
    Window above = window(100, 0, 1100, 800);
    above.layer = 3;
    const struct {
        const char* what;
        std::vector<Window> windows;
        bool covers, coversFromTheTop;
    } cases[] = {
        {"nothing", {}, false, false},
        {"exactly", {window(100, 0, 1100, 800)}, true, true},
        {"over two screens", {window(-900, 0, 2000, 900)}, true, true},
        {"below the menu bar", {window(100, 22, 1100, 800)}, true, false},
        {"one short at every side", {window(101, 1, 1099, 799)}, true, true},
        {"two short at the left", {window(102, 0, 1100, 800)}, false, false},
        {"two short at the right", {window(100, 0, 1098, 800)}, false, false},
        {"two short at the bottom", {window(100, 0, 1100, 798)}, false, false},
        {"maximized", {maximized}, false, false},
        {"above the applications", {above}, false, false},
        {"the second of two", {above, window(100, 0, 1100, 800)}, true, true},
        {"an overview over it", {window(100, 0, 1100, 800), dock(1)}, false, false},
        {"a panel that falls short of it", {window(100, 0, 1100, 800), dock(2)}, true, true},
        {"a panel alone", {dock(2)}, false, false},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(FullScreenDetection::isFullScreen(each.windows, screen, TopEdge::ignored),
                  each.covers)
            << each.what;
        EXPECT_EQ(FullScreenDetection::isFullScreen(each.windows, screen, TopEdge::compared),
                  each.coversFromTheTop)
            << each.what << ", from the top";
    }
}

TEST(FullScreenMonitor, AnswersForEachScreenAndAnnouncesOnceThingsHaveSettled) {
    SimulatedEventLoop loop(Instant{});
    test::FakeFacts desktop(loop);
    FullScreenMonitor monitor({&desktop.windows}, TopEdge::compared, loop);
    std::string announced;
    monitor.onChange = [&] {
        announced += std::to_string(toSeconds(loop.now() - Instant{})) + " ";
    };

    desktop.setFullScreen(true);
    EXPECT_TRUE(monitor.isFullScreen("right"));
    EXPECT_FALSE(monitor.isFullScreen("left"));
    EXPECT_FALSE(monitor.isFullScreen("gone"));
    loop.advance(700ms);
    desktop.setFullScreen(false);
    loop.advance(799ms);
    EXPECT_EQ(announced, "");
    loop.advance(5s);
    EXPECT_EQ(announced, "1.500000 ");
    EXPECT_FALSE(monitor.isAnyFullScreen());
    desktop.windows.found.reset();
    EXPECT_FALSE(monitor.isAnyFullScreen());
}

}  // namespace
}  // namespace tendel

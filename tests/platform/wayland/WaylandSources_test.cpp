#include "platform/linux/wayland/WaylandSources.h"

#include <QAbstractEventDispatcher>
#include <QTimer>

#include <ctime>

#include "NestedCompositor.h"
#include "platform/IdleScript.h"

namespace tendel {
namespace {

using Kind = NestedCompositor::Kind;
constexpr int aSecond = 1000;

// Everything that is told by one compositor, in the way in which the program has it.
class WaylandSourcesTest : public EventLoopTest {
protected:
    void connectTo(Kind kind) {
        compositor_ = std::make_unique<NestedCompositor>(kind);
        for (const char* name : {"XDG_RUNTIME_DIR", "WAYLAND_DISPLAY", "SWAYSOCK"})
            qputenv(name, compositor_->environment(name).toUtf8());
        connect();
        ASSERT_SOON(idle().tellsCrossings() && windows());
    }
    void connect() {
        wayland_ = std::make_unique<WaylandSources>(loop_);
        sources_ = {};
        wayland_->addTo(sources_);
        crossing_ = idle().crossed.connect([this] { ++crossings_; });
    }

    IdleSource& idle() { return wayland_->idle(); }
    std::optional<DesktopWindows> windows() { return sources_.windows.at(0)->windows(); }
    std::optional<bool> areScreensAsleep() {
        return sources_.system.at(0)->is(SystemState::screensAsleep);
    }
    std::optional<std::vector<WakeRequest>> requests() {
        return sources_.wakeRequests.at(0)->requests();
    }
    // Which screens are covered, one character each; nothing while unknown.
    std::string covered() {
        const auto now = windows();
        if (!now) return "?";
        std::string answer;
        for (const auto& screen : now->screens)
            answer +=
                FullScreenDetection::isFullScreen(now->windows, screen.frame, TopEdge::compared)
                    ? 'x'
                    : '-';
        return answer;
    }
    void command(const QString& words) { compositor_->ask("swaymsg -q " + words); }

    std::unique_ptr<NestedCompositor> compositor_;
    std::unique_ptr<WaylandSources> wayland_;
    PresenceSources sources_;
    int crossings_ = 0;
    Subscription crossing_;
};

TEST_F(WaylandSourcesTest, TellOfTheIdleThresholdAndOfTheFirstInputAfterIt) {
    connectTo(Kind::sway);
    test::expectCrossings(idle(), 0.6, [&](auto* words) { compositor_->input(words); });
    EXPECT_EQ(idle().idleSeconds(), 0);
}

TEST_F(WaylandSourcesTest, SeeWhichWindowCoversAScreen) {
    connectTo(Kind::swayWithoutWindow);
    int changes = 0;
    const auto counting = sources_.windows.at(0)->changed.connect([&] { ++changes; });
    EXPECT_EQ(covered(), "--");
    const auto client = compositor_->run(WAYLAND_WINDOW, {"--full-screen"}).processId();
    ASSERT_SOON(covered() == "x-");
    EXPECT_GT(changes, 0);
    SwayIpc ipc(loop_, qgetenv("SWAYSOCK").toStdString());
    SwayTree tree(loop_, ipc);
    SwayWindows ofOthers(tree, static_cast<std::int32_t>(client));
    ASSERT_SOON(ofOthers.windows().has_value());
    EXPECT_TRUE(ofOthers.windows()->windows.empty()) << "our own do not count";

    const struct {
        const char* command;
        const char* covered;
    } steps[]{{"fullscreen disable", "--"},  // it fills the output as a tile
              {"fullscreen enable global", "xx"},
              {"fullscreen disable", "--"},
              {"floating enable, resize set 300 200", "--"},
              {"fullscreen enable", "x-"},
              {"workspace elsewhere", "--"},
              {"[app_id=wayland_window] focus", "x-"},
              {"kill", "--"}};
    for (const auto& step : steps) {
        command(step.command);
        EXPECT_TRUE(test::runUntil([&] { return covered() == step.covered; }, aSecond))
            << step.command << ": " << covered();
    }
}

TEST_F(WaylandSourcesTest, SeeWhoKeepsTheDisplayAwake) {
    connectTo(Kind::sway);
    compositor_->run(WAYLAND_WINDOW);
    ASSERT_SOON(!windows()->windows.empty());
    for (const auto& [rule, count] : {std::pair("open", 1U), std::pair("none", 0U)}) {
        command(QStringLiteral("[app_id=wayland_window] inhibit_idle ") + rule);
        EXPECT_EQ(requests().value().size(), count) << "no event tells of the user's own rule";
    }

    QProcess& player = compositor_->run(WAYLAND_WINDOW, {"--inhibit-idle"});
    ASSERT_SOON(!requests().value().empty());
    const WakeRequest expected{.pid = static_cast<std::int32_t>(player.processId()),
                               .processName = "wayland_window",
                               .type = idleInhibitor};
    EXPECT_EQ(requests(), std::vector{expected});
    idle().watch(0.5);
    test::runFor(1500);
    EXPECT_EQ(idle().idleSeconds(), 0) << "while a film plays";

    player.kill();
    EXPECT_SOON(requests().value().empty());
    EXPECT_SOON(idle().idleSeconds() > 0);
}

TEST_F(WaylandSourcesTest, FindTheCompositorAgain) {
    connectTo(Kind::sway);
    idle().watch(0.5);
    crossings_ = 0;
    compositor_->stop();
    ASSERT_TRUE(test::runUntil([&] { return !idle().idleSeconds() && !windows(); }, aSecond));
    EXPECT_GT(crossings_, 0);
    EXPECT_FALSE(idle().tellsCrossings());
    EXPECT_EQ(requests(), std::nullopt);
    EXPECT_EQ(areScreensAsleep(), std::nullopt);

    const std::clock_t before = std::clock();
    test::runFor(2 * aSecond);
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 2) << "busy while it waits";

    compositor_->start();
    ASSERT_SOON(idle().tellsCrossings() && windows());
    EXPECT_SOON(idle().idleSeconds() > 0) << "the watch is remembered";
    EXPECT_SOON(areScreensAsleep() == false) << "told that it is on";
}

TEST_F(WaylandSourcesTest, AreNotWokenAtRest) {
    connectTo(Kind::sway);
    idle().watch(600);
    compositor_->run(WAYLAND_WINDOW);
    ASSERT_SOON(windows() && !windows()->windows.empty());
    test::runFor(500);
    int wakeUps = 0;
    QObject::connect(QCoreApplication::eventDispatcher(), &QAbstractEventDispatcher::awake,
                     [&] { ++wakeUps; });
    const int seconds = std::max(2, qEnvironmentVariableIntValue("TENDEL_REST_SECONDS"));
    QTimer end;
    end.setSingleShot(true);
    end.start(seconds * aSecond);
    while (end.isActive())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_LE(wakeUps, 1) << "the end of the waiting";
}

}  // namespace
}  // namespace tendel

#include <gtest/gtest.h>

#include <QDBusObjectPath>

#include "MockService.h"
#include "PrivateBus.h"
#include "platform/linux/LinuxEventLoop.h"
#include "platform/linux/bus/BusSources.h"

namespace tendel {
namespace {

using Requests = std::optional<std::vector<WakeRequest>>;

WakeRequest request(const char* who) {
    return {0, who, idleInhibitor};
}

class DesktopServicesTest : public testing::Test {
protected:
    QString address() const { return bus_.address(); }
    // Lets everything that is under way arrive.
    void settle() {
        test::runUntil([] { return false; }, 50);
    }

    LinuxEventLoop loop_;
    PrivateBus bus_;
    BusConnection session_{loop_, BusAddress::parse(bus_.address())};
};

TEST_F(DesktopServicesTest, AnyScreenSaverThatRunsCountsOnce) {
    constexpr auto freedesktop = "org.freedesktop.ScreenSaver";
    constexpr auto gnome = "org.gnome.ScreenSaver";
    ScreenSaverActivity activity(session_);
    int changes = 0;
    const Subscription counting = activity.changed.connect([&] { ++changes; });
    const auto becomes = [&](std::optional<bool> expected) {
        return test::runUntil(
            [&] { return activity.is(SystemState::screensaverRunning) == expected; });
    };
    settle();
    EXPECT_TRUE(becomes(std::nullopt)) << "no screen saver at all";

    MockService first(address(), freedesktop);
    first.answer("GetActive", {false});
    ASSERT_TRUE(becomes(false));
    for (const char* path : {"/ScreenSaver", "/org/freedesktop/ScreenSaver"})
        first.emitSignal(path, freedesktop, "ActiveChanged", {true});
    ASSERT_TRUE(becomes(true));
    settle();
    EXPECT_EQ(changes, 2);

    MockService second(address(), gnome);
    second.answer("GetActive", {true});
    ASSERT_TRUE(test::runUntil([&] { return second.calls("GetActive") == 1; }));
    settle();
    first.emitSignal("/ScreenSaver", freedesktop, "ActiveChanged", {"nonsense"});
    first.emitSignal("/ScreenSaver", freedesktop, "ActiveChanged", {false});
    settle();
    EXPECT_TRUE(becomes(true)) << "the other one runs on";
    second.leave();
    EXPECT_TRUE(becomes(false)) << "it ended while it ran";
    EXPECT_EQ(changes, 3);
    second.join();
    EXPECT_TRUE(becomes(true)) << "it came back, still running";
    EXPECT_EQ(activity.is(SystemState::locked), std::nullopt);
}

TEST_F(DesktopServicesTest, ScreensAreAsleepInEveryMutterModeButOn) {
    constexpr auto name = "org.gnome.Mutter.DisplayConfig";
    MutterDisplayPower power(session_);
    MockService mutter(address(), name);
    for (const auto& [mode, expected] : {std::pair<QVariant, std::optional<bool>>{3, true},
                                         {0, false},
                                         {1, true},
                                         {-1, std::nullopt},
                                         {0, false},
                                         {"off", std::nullopt}}) {
        mutter.setProperty("/org/gnome/Mutter/DisplayConfig", name, "PowerSaveMode", mode);
        EXPECT_TRUE(test::runUntil([&] {
            return power.is(SystemState::screensAsleep) == expected;
        })) << mode.toString().toStdString();
    }
}

class MutterIdleTest : public DesktopServicesTest {
protected:
    MutterIdleTest() {
        mutter_.answer("AddIdleWatch", {7U});
        mutter_.answer("AddUserActiveWatch", {8U});
        mutter_.answer("RemoveWatch", {});
        setIdle(0);
    }
    void setIdle(qulonglong milliseconds) { mutter_.answer("GetIdletime", {milliseconds}); }
    void fire(uint watch) {
        mutter_.emitSignal("/org/gnome/Mutter/IdleMonitor/Core", "org.gnome.Mutter.IdleMonitor",
                           "WatchFired", {watch});
    }
    bool isIdle() { return idle_.idleSeconds().value_or(0) > 0; }
    bool isTold() { return idle_.tellsCrossings() && idle_.idleSeconds().has_value(); }

    MockService mutter_{address(), "org.gnome.Mutter.IdleMonitor"};
    MutterIdle idle_{session_, loop_};
    int crossings_ = 0;
    Subscription counting_ = idle_.crossed.connect([this] { ++crossings_; });
};

TEST_F(MutterIdleTest, CountsOnFromTheCrossingUntilTheNextInput) {
    idle_.watch(300);
    EXPECT_EQ(idle_.idleSeconds(), std::nullopt) << "it has not answered yet";
    ASSERT_TRUE(test::runUntil([&] { return isTold(); }));
    EXPECT_EQ(idle_.idleSeconds(), 0);
    settle();
    crossings_ = 0;

    setIdle(300'000);
    fire(99);
    fire(7);
    ASSERT_TRUE(test::runUntil([&] { return isIdle(); }));
    EXPECT_EQ(crossings_, 1);
    EXPECT_GE(*idle_.idleSeconds(), 300);
    EXPECT_LT(*idle_.idleSeconds(), 310);
    ASSERT_TRUE(test::runUntil([&] { return mutter_.calls("AddUserActiveWatch") == 1; }));
    settle();
    EXPECT_EQ(crossings_, 1);

    fire(8);
    EXPECT_TRUE(test::runUntil([&] { return !isIdle(); }));
    EXPECT_EQ(crossings_, 2);
    EXPECT_EQ(idle_.idleSeconds(), 0);
}

TEST_F(MutterIdleTest, KnowsOfInputThatCameBeforeItWasWatchedFor) {
    idle_.watch(300);
    ASSERT_TRUE(test::runUntil([&] { return isTold(); }));
    settle();
    setIdle(20);
    fire(7);
    ASSERT_TRUE(test::runUntil([&] { return mutter_.calls("AddUserActiveWatch") == 1; }));
    EXPECT_TRUE(test::runUntil([&] { return !isIdle(); }));
    EXPECT_TRUE(test::runUntil([&] { return mutter_.calls("RemoveWatch") == 1; }));
}

TEST_F(MutterIdleTest, StandsRightAfterANewThresholdAndANewMutter) {
    setIdle(120'000);
    idle_.watch(300);
    ASSERT_TRUE(test::runUntil([&] { return isTold(); }));
    EXPECT_FALSE(isIdle());
    idle_.watch(60);
    ASSERT_TRUE(test::runUntil([&] { return isIdle(); })) << "crossed already";
    EXPECT_NEAR(*idle_.idleSeconds(), 120, 10);
    EXPECT_EQ(mutter_.calls("RemoveWatch"), 1) << "the watch before";
    settle();

    mutter_.leave();
    EXPECT_TRUE(test::runUntil([&] { return !idle_.tellsCrossings(); }));
    EXPECT_EQ(idle_.idleSeconds(), std::nullopt);
    mutter_.join();
    EXPECT_TRUE(test::runUntil([&] { return isIdle(); })) << "the threshold is remembered";
    EXPECT_EQ(mutter_.calls("AddIdleWatch"), 3);
    idle_.watch(std::nullopt);
    EXPECT_TRUE(test::runUntil([&] { return idle_.idleSeconds() == 0; }));
}

TEST_F(DesktopServicesTest, GnomeInhibitorsOfIdlenessAreKeptUp) {
    constexpr auto path = "/org/gnome/SessionManager";
    constexpr auto name = "org.gnome.SessionManager";
    const auto inhibitor = [](int number) {
        return QDBusObjectPath(QString("%1/Inhibitor%2").arg(path).arg(number));
    };
    GnomeInhibitors inhibitors(session_);
    MockService manager(address(), name);
    manager.answer("GetFlags", {12U});
    manager.answer("GetAppId", {"org.videolan.vlc"});
    manager.answer("GetInhibitors", {QVariant::fromValue(QList<QDBusObjectPath>{inhibitor(1)})});
    const auto becomes = [&](const Requests& expected) {
        return test::runUntil([&] { return inhibitors.requests() == expected; });
    };
    ASSERT_TRUE(becomes({{request("org.videolan.vlc")}}));
    manager.answer("GetFlags", {4U});
    manager.emitSignal(path, name, "InhibitorAdded", {QVariant::fromValue(inhibitor(2))});
    ASSERT_TRUE(test::runUntil([&] { return manager.calls("GetAppId") == 2; }));
    manager.answer("GetFlags", {8U});
    manager.answer("GetAppId", {"caffeine"});
    manager.emitSignal(path, name, "InhibitorAdded", {QVariant::fromValue(inhibitor(3))});
    ASSERT_TRUE(becomes({{request("org.videolan.vlc"), request("caffeine")}}));

    bool wasTold = false;
    const Subscription telling = inhibitors.changed.connect([&] { wasTold = true; });
    manager.emitSignal(path, name, "InhibitorRemoved", {QVariant::fromValue(inhibitor(1))});
    ASSERT_TRUE(test::runUntil([&] { return wasTold; }));
    EXPECT_TRUE(becomes({{request("caffeine")}}));
    manager.leave();
    EXPECT_TRUE(becomes(std::nullopt));
}

TEST_F(DesktopServicesTest, KdeInhibitorsOfTheScreensAreToldFromTheOthers) {
    constexpr auto name = "org.kde.Solid.PowerManagement.PolicyAgent";
    KdeInhibitors inhibitors(session_);
    MockService agent(address(), name);
    const Inhibition copying{"dolphin", "copying"};
    const Inhibition playing{"mpv", "playing"};
    struct Step {
        QList<Inhibition> all;
        bool isAnyForScreens;
        std::vector<WakeRequest> expected;
    };
    for (const Step& step : {
             Step{{copying, playing}, true, {request("dolphin"), request("mpv")}},
             Step{{copying}, false, {}},
             Step{{copying, playing}, true, {request("mpv")}},
             Step{{playing}, true, {request("mpv")}},
             Step{{}, false, {}},
             Step{{copying}, false, {}},
             Step{{copying}, true, {request("dolphin")}},
         }) {
        agent.answer("HasInhibition", {step.isAnyForScreens});
        agent.answer("ListInhibitions", {QVariant::fromValue(step.all)});
        agent.emitSignal("/org/kde/Solid/PowerManagement/PolicyAgent", name, "InhibitionsChanged",
                         {QVariant::fromValue(step.all), QStringList{}});
        settle();
        EXPECT_TRUE(test::runUntil([&] { return inhibitors.requests() == step.expected; }))
            << step.all.size();
    }
    agent.leave();
    EXPECT_TRUE(test::runUntil([&] { return !inhibitors.requests(); }));
}

TEST_F(DesktopServicesTest, XfceInhibitorsAreAskedEachTimeAndNeverWaitedFor) {
    constexpr auto path = "/org/freedesktop/PowerManagement/Inhibit";
    constexpr auto name = "org.freedesktop.PowerManagement";
    XfceInhibitors inhibitors(session_);
    EXPECT_EQ(inhibitors.requests(), std::nullopt);
    MockService manager(address(), name);
    manager.answer("GetInhibitors", {QStringList{"Parole"}});
    int changes = 0;
    const Subscription counting = inhibitors.changed.connect([&] { ++changes; });
    ASSERT_TRUE(test::runUntil([&] { return changes == 1; }));
    EXPECT_EQ(inhibitors.requests(), Requests{{request("Parole")}});
    manager.answer("GetInhibitors", {QStringList{"Parole", "Firefox"}});
    EXPECT_EQ(inhibitors.requests(), (Requests{{request("Parole"), request("Firefox")}}));
    manager.emitSignal(path, QString("%1.Inhibit").arg(name), "HasInhibitChanged", {true});
    EXPECT_TRUE(test::runUntil([&] { return changes == 2; }));

    manager.setHanging(true);
    QElapsedTimer time;
    time.start();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(inhibitors.requests(), std::nullopt);
    EXPECT_LT(time.elapsed(), 1000) << "waited for more than once";
    manager.answer("Ping", {});
    manager.setHanging(false);
    EXPECT_TRUE(test::runUntil([&] { return inhibitors.requests().has_value(); }));
}

}  // namespace
}  // namespace tendel

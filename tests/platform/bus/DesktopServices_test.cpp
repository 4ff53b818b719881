#include <QDBusObjectPath>

#include "MockService.h"
#include "PrivateBus.h"
#include "platform/linux/bus/BusSources.h"

namespace tendel {
namespace {

using Requests = std::optional<std::vector<WakeRequest>>;

WakeRequest request(const char* who) {
    return {0, who, idleInhibitor};
}

class DesktopServicesTest : public BusTest {
protected:
    // Lets everything that is under way arrive.
    static void settle() { test::runFor(50); }

    BusConnection session_{loop_, BusAddress::parse(bus_.address())};
};

TEST_F(DesktopServicesTest, AnyScreenSaverThatRunsCountsOnce) {
    constexpr auto freedesktop = "org.freedesktop.ScreenSaver";
    ScreenSaverActivity activity(session_);
    int changes = 0;
    const Subscription counting = activity.changed.connect([&] { ++changes; });
    const auto runs = [&] { return activity.is(SystemState::screensaverRunning); };
    settle();
    EXPECT_EQ(runs(), std::nullopt) << "no screen saver at all";

    MockService first(bus_.address(), freedesktop);
    first.answer("GetActive", {false});
    ASSERT_SOON(runs() == false);
    for (const char* path : {"/ScreenSaver", "/org/freedesktop/ScreenSaver"})
        first.emitSignal(path, freedesktop, "ActiveChanged", {true});
    ASSERT_SOON(runs() == true);
    settle();
    EXPECT_EQ(changes, 2);

    MockService second(bus_.address(), "org.gnome.ScreenSaver");
    second.answer("GetActive", {true});
    ASSERT_SOON(second.calls("GetActive") == 1);
    settle();
    first.emitSignal("/ScreenSaver", freedesktop, "ActiveChanged", {"nonsense"});
    first.emitSignal("/ScreenSaver", freedesktop, "ActiveChanged", {false});
    settle();
    EXPECT_EQ(runs(), true) << "the other one runs on";
    second.leave();
    EXPECT_SOON(runs() == false) << "it ended while it ran";
    EXPECT_EQ(changes, 3);
    second.join();
    EXPECT_SOON(runs() == true) << "it came back, still running";
}

TEST_F(DesktopServicesTest, ScreensAreAsleepInEveryMutterModeButOn) {
    constexpr auto name = "org.gnome.Mutter.DisplayConfig";
    MutterDisplayPower power(session_);
    MockService mutter(bus_.address(), name);
    using Case = std::pair<QVariant, std::optional<bool>>;
    for (const auto& [mode, expected] : {Case{3, true},
                                         {0, false},
                                         {1, true},
                                         {-1, std::nullopt},
                                         {0, false},
                                         {"off", std::nullopt}}) {
        mutter.setProperty("/org/gnome/Mutter/DisplayConfig", name, "PowerSaveMode", mode);
        EXPECT_SOON(power.is(SystemState::screensAsleep) == expected)
            << mode.toString().toStdString();
    }
}

class MutterIdleTest : public DesktopServicesTest {
protected:
    MutterIdleTest() {
        mutter_.answer("AddIdleWatch", {7U});
        mutter_.answer("AddUserActiveWatch", {8U});
        mutter_.answer("RemoveWatch", {});
    }
    void watch(double seconds, qulonglong idleMilliseconds) {
        mutter_.answer("GetIdletime", {idleMilliseconds});
        idle_.watch(seconds);
    }
    void fire(uint watch, qulonglong idleMilliseconds) {
        mutter_.answer("GetIdletime", {idleMilliseconds});
        mutter_.emitSignal("/org/gnome/Mutter/IdleMonitor/Core", "org.gnome.Mutter.IdleMonitor",
                           "WatchFired", {watch});
    }
    bool isIdle() { return idle_.idleSeconds().value_or(0) > 0; }
    bool isTold() { return idle_.tellsCrossings() && idle_.idleSeconds().has_value(); }

    MockService mutter_{bus_.address(), "org.gnome.Mutter.IdleMonitor"};
    MutterIdle idle_{session_, loop_};
    int crossings_ = 0;
    Subscription counting_ = idle_.crossed.connect([this] { ++crossings_; });
};

TEST_F(MutterIdleTest, KnowsOfInputThatCameBeforeItWasWatchedFor) {
    watch(300, 0);
    EXPECT_EQ(idle_.idleSeconds(), std::nullopt) << "it has not answered yet";
    ASSERT_SOON(isTold());
    settle();
    crossings_ = 0;
    fire(99, 300'000);  // somebody else's watch
    settle();
    EXPECT_EQ(crossings_, 0);
    fire(7, 20);
    ASSERT_SOON(mutter_.calls("AddUserActiveWatch") == 1);
    EXPECT_SOON(!isIdle());
    EXPECT_SOON(mutter_.calls("RemoveWatch") == 1);
}

TEST_F(MutterIdleTest, StandsRightAfterANewThresholdAndANewMutter) {
    watch(300, 120'000);
    ASSERT_SOON(isTold());
    EXPECT_FALSE(isIdle());
    watch(60, 120'000);
    ASSERT_SOON(isIdle()) << "crossed already";
    EXPECT_NEAR(*idle_.idleSeconds(), 120, 10);
    EXPECT_EQ(mutter_.calls("RemoveWatch"), 1) << "the watch before";
    settle();

    mutter_.leave();
    EXPECT_SOON(!idle_.tellsCrossings());
    EXPECT_EQ(idle_.idleSeconds(), std::nullopt);
    mutter_.join();
    EXPECT_SOON(isIdle()) << "the threshold is remembered";
    EXPECT_EQ(mutter_.calls("AddIdleWatch"), 3);
    idle_.watch(std::nullopt);
    EXPECT_SOON(idle_.idleSeconds() == 0);
}

TEST_F(DesktopServicesTest, GnomeInhibitorsOfIdlenessAreKeptUp) {
    constexpr auto path = "/org/gnome/SessionManager";
    constexpr auto name = "org.gnome.SessionManager";
    const auto inhibitor = [path](const char* number) {
        return QDBusObjectPath(QString("%1/Inhibitor%2").arg(path, number));
    };
    GnomeInhibitors inhibitors(session_);
    MockService manager(bus_.address(), name);
    const auto tell = [&](const char* what, const char* number) {
        manager.emitSignal(path, name, what, {QVariant::fromValue(inhibitor(number))});
    };
    manager.answer("GetFlags", {12U});
    manager.answer("GetAppId", {"org.videolan.vlc"});
    manager.answer("GetInhibitors", {QVariant::fromValue(QList<QDBusObjectPath>{inhibitor("1")})});
    ASSERT_SOON(inhibitors.requests() == Requests{{request("org.videolan.vlc")}});
    manager.answer("GetFlags", {4U});
    tell("InhibitorAdded", "2");
    ASSERT_SOON(manager.calls("GetAppId") == 2);
    manager.answer("GetFlags", {8U});
    manager.answer("GetAppId", {"caffeine"});
    tell("InhibitorAdded", "3");
    const Requests both{{request("org.videolan.vlc"), request("caffeine")}};
    ASSERT_SOON(inhibitors.requests() == both);

    bool wasTold = false;
    const Subscription telling = inhibitors.changed.connect([&] { wasTold = true; });
    tell("InhibitorRemoved", "1");
    ASSERT_SOON(wasTold);
    EXPECT_SOON(inhibitors.requests() == Requests{{request("caffeine")}});
    manager.leave();
    EXPECT_SOON(!inhibitors.requests());
}

TEST_F(DesktopServicesTest, KdeInhibitorsOfTheScreensAreToldFromTheOthers) {
    constexpr auto name = "org.kde.Solid.PowerManagement.PolicyAgent";
    KdeInhibitors inhibitors(session_);
    MockService agent(bus_.address(), name);
    const Inhibition copying{"dolphin", "copying"};
    const Inhibition playing{"mpv", "playing"};
    struct Step {
        QList<Inhibition> all;
        bool isAnyForScreens;
        std::vector<WakeRequest> expected;
    };
    for (const auto& [all, isAnyForScreens, expected] :
         {Step{{copying, playing}, true, {request("dolphin"), request("mpv")}},
          {{copying}, false, {}},
          {{copying, playing}, true, {request("mpv")}},
          {{}, false, {}},
          {{copying}, false, {}},
          {{copying}, true, {request("dolphin")}}}) {
        agent.answer("HasInhibition", {isAnyForScreens});
        agent.answer("ListInhibitions", {QVariant::fromValue(all)});
        agent.emitSignal("/org/kde/Solid/PowerManagement/PolicyAgent", name, "InhibitionsChanged",
                         {QVariant::fromValue(all), QStringList{}});
        settle();
        EXPECT_SOON(inhibitors.requests() == expected) << all.size();
    }
    agent.leave();
    EXPECT_SOON(!inhibitors.requests());
}

TEST_F(DesktopServicesTest, XfceInhibitorsAreAskedEachTimeAndNeverWaitedFor) {
    constexpr auto name = "org.freedesktop.PowerManagement";
    XfceInhibitors inhibitors(session_);
    MockService manager(bus_.address(), name);
    manager.answer("GetInhibitors", {QStringList{"Parole"}});
    int changes = 0;
    const Subscription counting = inhibitors.changed.connect([&] { ++changes; });
    ASSERT_SOON(changes == 1);
    EXPECT_EQ(inhibitors.requests(), Requests{{request("Parole")}});
    manager.answer("GetInhibitors", {QStringList{"Parole", "Firefox"}});
    EXPECT_EQ(inhibitors.requests(), (Requests{{request("Parole"), request("Firefox")}}));
    manager.emitSignal("/org/freedesktop/PowerManagement/Inhibit", QString("%1.Inhibit").arg(name),
                       "HasInhibitChanged", {true});
    EXPECT_SOON(changes == 2);

    manager.setHanging(true);
    QElapsedTimer time;
    time.start();
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(inhibitors.requests(), std::nullopt);
    EXPECT_LT(time.elapsed(), 1000) << "waited for more than once";
    manager.answer("Ping", {});
    manager.setHanging(false);
    EXPECT_SOON(inhibitors.requests());
}

}  // namespace
}  // namespace tendel

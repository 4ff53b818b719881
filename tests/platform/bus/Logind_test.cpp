#include <gtest/gtest.h>

#include <QDBusConnection>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>

#include <unistd.h>

#include "PrivateBus.h"
#include "platform/linux/LinuxEventLoop.h"
#include "platform/linux/bus/BusSources.h"

namespace tendel {
namespace {

constexpr auto name = "org.freedesktop.login1";
constexpr auto manager = "/org/freedesktop/login1";
constexpr auto managerInterface = "org.freedesktop.login1.Manager";
constexpr auto sessionInterface = "org.freedesktop.login1.Session";
constexpr auto mockInterface = "org.freedesktop.DBus.Mock";

// With a stand-in for the login service on a system bus of its own.
class LogindTest : public testing::Test {
protected:
    LogindTest() {
        startLogind();
        addSession("7");
    }
    ~LogindTest() override { QDBusConnection::disconnectFromBus("test"); }

    void startLogind() {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DBUS_SYSTEM_BUS_ADDRESS", bus_.address());
        logind_.setProcessEnvironment(environment);
        // The distribution's own interpreter has the module.
        logind_.start("/usr/bin/python3", {"-m", "dbusmock", "--system", "--template", "logind"});
        ASSERT_TRUE(test::runUntil([&] { return isRunning(); }, 30000));
    }
    bool isRunning() { return mock(manager, "GetCalls", {}).type() == QDBusMessage::ReplyMessage; }

    QDBusMessage call(const QString& service, const QString& path, const QString& interfaceName,
                      const QString& method, const QVariantList& arguments = {}) {
        auto message = QDBusMessage::createMethodCall(service, path, interfaceName, method);
        message.setArguments(arguments);
        message.setAutoStartService(false);
        return test_.call(message);
    }
    QDBusMessage mock(const QString& path, const QString& method, const QVariantList& arguments) {
        return call(name, path, mockInterface, method, arguments);
    }
    void addSession(const QString& id) {
        mock(manager, "AddSession", {id, "seat0", static_cast<uint>(::getuid()), "user", true});
    }
    static QString session(const QString& id) { return QString("%1/session/%2").arg(manager, id); }
    void setLocked(const QString& id, bool isLocked) {
        call(name, session(id), sessionInterface, "SetLockedHint", {isLocked});
    }
    void update(const QString& path, const QString& interfaceName, const QVariantMap& properties) {
        mock(path, "UpdateProperties", {interfaceName, properties});
    }

    LinuxEventLoop loop_;
    PrivateBus bus_;
    QDBusConnection test_ = QDBusConnection::connectToBus(bus_.address(), "test");
    Child logind_;
    BusConnection system_{loop_, BusAddress::parse(bus_.address())};
};

TEST_F(LogindTest, LockingSwitchingAndSleepAreToldUntilTheServiceDies) {
    LogindActivity activity(system_, "7");
    const auto becomes = [&](SystemState state, std::optional<bool> expected) {
        return test::runUntil([&] { return activity.is(state) == expected; });
    };
    const auto sleep = [&](bool begins) {
        mock(manager, "EmitSignal",
             {managerInterface, "PrepareForSleep", "b", QVariantList{begins}});
    };
    for (const SystemState state :
         {SystemState::locked, SystemState::sessionInactive, SystemState::screensAsleep})
        ASSERT_TRUE(becomes(state, false));
    int changes = 0;
    const Subscription counting = activity.changed.connect([&] { ++changes; });

    call(name, session("7"), sessionInterface, "Lock");  // a request, which nobody followed yet
    setLocked("8", true);
    setLocked("7", true);
    EXPECT_TRUE(becomes(SystemState::locked, true));
    setLocked("7", true);
    sleep(true);
    EXPECT_TRUE(becomes(SystemState::screensAsleep, true));
    update(session("7"), sessionInterface, {{"Active", false}});
    EXPECT_TRUE(becomes(SystemState::sessionInactive, true));
    EXPECT_EQ(changes, 3);
    setLocked("7", false);
    sleep(false);
    update(session("7"), sessionInterface, {{"Active", true}});
    EXPECT_TRUE(becomes(SystemState::locked, false));
    EXPECT_TRUE(becomes(SystemState::screensAsleep, false));
    EXPECT_TRUE(becomes(SystemState::sessionInactive, false));
    EXPECT_EQ(changes, 6);

    setLocked("7", true);
    EXPECT_TRUE(becomes(SystemState::locked, true));
    logind_.end();
    EXPECT_TRUE(becomes(SystemState::locked, std::nullopt));
    EXPECT_TRUE(becomes(SystemState::sessionInactive, std::nullopt));
    startLogind();
    EXPECT_TRUE(becomes(SystemState::screensAsleep, false));
}

TEST_F(LogindTest, FindsTheSessionWithoutAnId) {
    setLocked("7", true);
    const auto tells = [&](std::optional<bool> isLocked) {
        LogindActivity activity(system_, QString());
        test::runUntil([&] { return activity.is(SystemState::screensAsleep) == false; });
        if (!isLocked) test::runUntil([] { return false; }, 100);
        return test::runUntil([&] { return activity.is(SystemState::locked) == isLocked; });
    };
    const auto define = [&](const char* method, const char* code) {
        mock(manager, "AddMethod", {managerInterface, method, "u", "o", code});
    };
    EXPECT_TRUE(tells(std::nullopt));
    define("GetUser", R"(
user = "/org/freedesktop/login1/user/%u" % args[0]
objects[user].props["org.freedesktop.login1.User"]["Display"] = (
    dbus.String("7"), dbus.ObjectPath("/org/freedesktop/login1/session/7"))
ret = user)");
    EXPECT_TRUE(tells(true)) << "the user's display session";
    addSession("8");
    define("GetSessionByPID", "ret = '/org/freedesktop/login1/session/8'");
    EXPECT_TRUE(tells(false)) << "the process's own session";
}

TEST_F(LogindTest, InhibitorsOfIdlenessAreAskedForWhileThereAreSome) {
    const auto inhibit = [&](const char* what, const char* who, const char* mode) {
        return QDBusReply<QDBusUnixFileDescriptor>(
            call(name, manager, managerInterface, "Inhibit", {what, who, "why", mode}));
    };
    LogindInhibitors inhibitors(system_);
    EXPECT_TRUE(
        test::runUntil([&] { return inhibitors.requests() == std::vector<WakeRequest>{}; }));
    const auto suspending = inhibit("sleep:shutdown", "updater", "block");
    const auto delaying = inhibit("idle", "agent", "delay");
    EXPECT_EQ(inhibitors.requests(), std::vector<WakeRequest>{});
    const auto playing = inhibit("sleep:idle", "player", "block");
    const std::vector<WakeRequest> expected{{123456, "player", idleInhibitor}};
    EXPECT_EQ(inhibitors.requests(), expected);

    // Where the service tells what is inhibited, nobody asks in vain.
    mock(manager, "AddProperty",
         {managerInterface, "BlockInhibited",
          QVariant::fromValue(QDBusVariant(QString("sleep:handle-lid-switch")))});
    bool wasTold = false;
    const Subscription telling = inhibitors.changed.connect([&] { wasTold = true; });
    update(manager, managerInterface, {{"BlockInhibited", "sleep:shutdown"}});
    ASSERT_TRUE(test::runUntil([&] { return wasTold; }));
    EXPECT_EQ(inhibitors.requests(), std::vector<WakeRequest>{});
    wasTold = false;
    update(manager, managerInterface, {{"BlockInhibited", "sleep:shutdown:idle"}});
    ASSERT_TRUE(test::runUntil([&] { return wasTold; }));
    EXPECT_EQ(inhibitors.requests(), expected);

    logind_.end();
    EXPECT_TRUE(test::runUntil([&] { return !inhibitors.requests(); }));
}

}  // namespace
}  // namespace tendel

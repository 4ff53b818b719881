#include <QDBusConnection>
#include <QDBusReply>
#include <QDBusUnixFileDescriptor>

#include <unistd.h>

#include "PrivateBus.h"
#include "platform/linux/bus/BusSources.h"

namespace tendel {
namespace {

constexpr auto name = "org.freedesktop.login1";
constexpr auto manager = "/org/freedesktop/login1";
constexpr auto managerInterface = "org.freedesktop.login1.Manager";
constexpr auto sessionInterface = "org.freedesktop.login1.Session";
constexpr auto mockInterface = "org.freedesktop.DBus.Mock";

// With a stand-in for the login service on a system bus of its own.
class LogindTest : public BusTest {
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
        const auto isRunning = [&] {
            return mock(manager, "GetCalls", {}).type() == QDBusMessage::ReplyMessage;
        };
        ASSERT_TRUE(test::runUntil(isRunning, 30000));
    }
    QDBusMessage call(const QString& path, const QString& interfaceName, const QString& method,
                      const QVariantList& arguments = {}) {
        auto message = QDBusMessage::createMethodCall(name, path, interfaceName, method);
        message.setArguments(arguments);
        message.setAutoStartService(false);
        return test_.call(message);
    }
    QDBusMessage mock(const QString& path, const QString& method, const QVariantList& arguments) {
        return call(path, mockInterface, method, arguments);
    }
    void addSession(const QString& id) {
        mock(manager, "AddSession", {id, "seat0", static_cast<uint>(::getuid()), "user", true});
    }
    static QString session(const QString& id) { return QString("%1/session/%2").arg(manager, id); }
    void setLocked(const QString& id, bool isLocked) {
        call(session(id), sessionInterface, "SetLockedHint", {isLocked});
    }
    void update(const QString& path, const QString& interfaceName, const QVariantMap& properties) {
        mock(path, "UpdateProperties", {interfaceName, properties});
    }

    QDBusConnection test_ = QDBusConnection::connectToBus(bus_.address(), "test");
    test::Child logind_;
    BusConnection system_{loop_, BusAddress::parse(bus_.address())};
};

TEST_F(LogindTest, LockingSwitchingAndSleepAreToldUntilTheServiceDies) {
    using enum SystemState;
    LogindActivity activity(system_, "7");
    const auto sleep = [&](bool begins) {
        mock(manager, "EmitSignal",
             {managerInterface, "PrepareForSleep", "b", QVariantList{begins}});
    };
    const auto isEverything = [&](bool expected) {
        return activity.is(locked) == expected && activity.is(sessionInactive) == expected &&
               activity.is(screensAsleep) == expected;
    };
    ASSERT_SOON(isEverything(false));
    int changes = 0;
    const Subscription counting = activity.changed.connect([&] { ++changes; });

    call(session("7"), sessionInterface, "Lock");  // a request, which nobody followed yet
    setLocked("8", true);
    setLocked("7", true);
    EXPECT_SOON(activity.is(locked) == true);
    setLocked("7", true);
    sleep(true);
    EXPECT_SOON(activity.is(screensAsleep) == true);
    update(session("7"), sessionInterface, {{"Active", false}});
    EXPECT_SOON(isEverything(true));
    EXPECT_EQ(changes, 3);
    setLocked("7", false);
    sleep(false);
    update(session("7"), sessionInterface, {{"Active", true}});
    EXPECT_SOON(isEverything(false));
    EXPECT_EQ(changes, 6);

    setLocked("7", true);
    EXPECT_SOON(activity.is(locked) == true);
    logind_.end();
    EXPECT_SOON(!activity.is(locked) && !activity.is(sessionInactive));
    startLogind();
    EXPECT_SOON(activity.is(screensAsleep) == false);
}

TEST_F(LogindTest, FindsTheSessionWithoutAnId) {
    setLocked("7", true);
    const auto tells = [&](std::optional<bool> isLocked) {
        LogindActivity activity(system_, QString());
        test::runUntil([&] { return activity.is(SystemState::screensAsleep) == false; });
        if (!isLocked) test::runFor(100);
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
            call(manager, managerInterface, "Inhibit", {what, who, "why", mode}));
    };
    const std::vector<WakeRequest> nobody, expected{{123456, "player", idleInhibitor}};
    LogindInhibitors inhibitors(system_);
    EXPECT_SOON(inhibitors.requests() == nobody);
    const auto suspending = inhibit("sleep:shutdown", "updater", "block");
    const auto delaying = inhibit("idle", "agent", "delay");
    EXPECT_EQ(inhibitors.requests(), nobody);
    const auto playing = inhibit("sleep:idle", "player", "block");
    EXPECT_EQ(inhibitors.requests(), expected);

    // Where the service tells what is inhibited, nobody asks in vain.
    mock(manager, "AddProperty",
         {managerInterface, "BlockInhibited",
          QVariant::fromValue(QDBusVariant(QString("sleep:handle-lid-switch")))});
    for (const auto& [inhibited, requests] :
         {std::pair("sleep:shutdown", nobody), {"sleep:shutdown:idle", expected}}) {
        bool wasTold = false;
        const Subscription telling = inhibitors.changed.connect([&] { wasTold = true; });
        update(manager, managerInterface, {{"BlockInhibited", inhibited}});
        ASSERT_SOON(wasTold);
        EXPECT_EQ(inhibitors.requests(), requests);
    }
    logind_.end();
    EXPECT_SOON(!inhibitors.requests());
}

}  // namespace
}  // namespace tendel

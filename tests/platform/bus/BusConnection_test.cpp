#include "platform/linux/bus/BusConnection.h"

#include <gtest/gtest.h>

#include <QDir>

#include <algorithm>

#include "MockService.h"
#include "PrivateBus.h"
#include "platform/linux/LinuxEventLoop.h"
#include "platform/linux/bus/BusSources.h"

namespace tendel {
namespace {

qsizetype entries(const char* folder) {
    return QDir(folder).entryList(QDir::NoDotAndDotDot | QDir::AllEntries | QDir::System).size();
}

#ifdef __SANITIZE_ADDRESS__
constexpr int allowedGrowth = 256 * 1024;  // keeps back what is freed
#else
constexpr int allowedGrowth = 1024;
#endif

// In kilobytes, without the pages of files, which other programs come to share and leave again.
int ownMemory() {
    QFile file("/proc/self/smaps_rollup");
    if (!file.open(QIODevice::ReadOnly)) return -1;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("Anonymous:")) return line.simplified().split(' ').value(1).toInt();
    return -1;
}

TEST(BusAddress, TellsTheSocketAndForgetsTheIdentity) {
    struct Case {
        const char* address;
        const char* text;
        QByteArray socket;
    };
    for (const auto& [address, text, socket] : {
             Case{"unix:path=/run/user/1/bus", "unix:path=/run/user/1/bus", "/run/user/1/bus"},
             Case{"unix:path=/tmp/a%20b,guid=12ab", "unix:path=/tmp/a%20b", "/tmp/a b"},
             Case{"unix:guid=12ab,abstract=/tmp/x", "unix:abstract=/tmp/x",
                  QByteArray("\0/tmp/x", 7)},
             Case{"tcp:host=localhost,port=1", "tcp:host=localhost,port=1", ""},
             Case{"unix:path=/a,guid=1;unix:path=/b", "unix:path=/a;unix:path=/b", ""},
             Case{"autolaunch:", "", ""},
             Case{"nonsense", "nonsense", ""},
             Case{"", "", ""},
         }) {
        EXPECT_EQ(BusAddress::parse(address).text, QString(text)) << address;
        EXPECT_EQ(BusAddress::parse(address).socket, socket) << address;
    }
}

class BusConnectionTest : public testing::Test {
protected:
    LinuxEventLoop loop_;
    PrivateBus bus_;
};

TEST_F(BusConnectionTest, OutlivesManyBusesWithoutGrowing) {
    BusSources sources(loop_, BusAddress::parse(bus_.addressWithIdentity()), BusAddress{});
    BusConnection connection(loop_, BusAddress::parse(bus_.addressWithIdentity()));
    const auto isConnected = [&] { return connection.bus().has_value(); };
    ASSERT_TRUE(test::runUntil(isConnected));

    constexpr int rounds = 500;
    constexpr int warmUp = 50;
    qsizetype descriptors = 0;
    qsizetype threads = 0;
    int memory = -1;
    for (int round = 0; round < rounds; ++round) {
        if (round == warmUp) {
            descriptors = entries("/proc/self/fd");
            threads = entries("/proc/self/task");
            memory = ownMemory();
        }
        bus_.kill();
        ASSERT_TRUE(test::runUntil([&] { return !isConnected(); })) << round;
        bus_.start();
        ASSERT_TRUE(test::runUntil(isConnected)) << round;
    }
    EXPECT_TRUE(test::runUntil([&] { return entries("/proc/self/fd") <= descriptors; }))
        << entries("/proc/self/fd") << " descriptors after " << descriptors;
    EXPECT_EQ(entries("/proc/self/task"), threads);
    ASSERT_GT(memory, 0);
    EXPECT_LT(ownMemory() - memory, allowedGrowth);
}

TEST_F(BusConnectionTest, FindsABusThatComesLateWhereverItsSocketIs) {
    PrivateBus late(false);
    const QString abstractAddress =
        QString("unix:abstract=/tendel-test-%1").arg(QCoreApplication::applicationPid());
    BusConnection byFile(loop_, BusAddress::parse(late.address()));
    BusConnection byName(loop_, BusAddress::parse(abstractAddress));
    // Until two attempts have failed, so that the third is two seconds away.
    test::runUntil([] { return false; }, 1600);
    EXPECT_FALSE(byFile.bus() || byName.bus());

    Child daemon;
    daemon.start("dbus-daemon", {"--session", "--nofork", "--address=" + abstractAddress});
    late.start();
    EXPECT_TRUE(test::runUntil([&] { return byFile.bus().has_value(); }, 1500));
    EXPECT_TRUE(test::runUntil([&] { return byName.bus().has_value(); }));
}

TEST_F(BusConnectionTest, IsNotKeptByABusThatHangs) {
    bus_.signal(SIGSTOP);
    QElapsedTimer time;
    time.start();
    BusConnection connection(loop_, BusAddress::parse(bus_.address()));
    test::runUntil([] { return false; }, 50);
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_FALSE(connection.bus());
    bus_.signal(SIGCONT);
    EXPECT_TRUE(test::runUntil([&] { return connection.bus().has_value(); }));
}

TEST_F(BusConnectionTest, MakesEverythingUnknownUntilTheBusIsBack) {
    BusSources bus(loop_, BusAddress::parse(bus_.address()), BusAddress{});
    PresenceSources sources;
    bus.addTo(sources);
    // How many sources can tell.
    const auto known = [&] {
        return std::ranges::count_if(sources.system,
                                     [](const auto* source) {
                                         return source->is(SystemState::screensaverRunning) == true;
                                     }) +
               std::ranges::count_if(sources.wakeRequests,
                                     [](auto* source) { return source->requests().has_value(); });
    };
    // Each change makes the whole of it be asked, also while half of it is lost.
    std::vector<Subscription> subscriptions;
    for (auto* source : sources.wakeRequests)
        subscriptions.push_back(source->changed.connect([&] { known(); }));

    for (int round = 0; round < 2; ++round) {
        MockService saver(bus_.address(), "org.gnome.ScreenSaver");
        saver.answer("GetActive", {true});
        MockService agent(bus_.address(), "org.kde.Solid.PowerManagement.PolicyAgent");
        agent.answer("HasInhibition", {false});
        agent.answer("ListInhibitions", {QVariant::fromValue(QList<Inhibition>{})});
        MockService manager(bus_.address(), "org.freedesktop.PowerManagement");
        manager.answer("GetInhibitors", {QStringList{}});
        ASSERT_TRUE(test::runUntil([&] { return known() == 3; })) << round;
        bus_.kill();
        EXPECT_TRUE(test::runUntil([&] { return known() == 0; })) << round;
        bus_.start();
    }
}

}  // namespace
}  // namespace tendel

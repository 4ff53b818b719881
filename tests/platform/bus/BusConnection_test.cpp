#include "platform/linux/bus/BusConnection.h"

#include <algorithm>

#include "MockService.h"
#include "PrivateBus.h"
#include "platform/linux/bus/BusSources.h"

namespace tendel {
namespace {

using test::entries;

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

using BusConnectionTest = BusTest;

TEST_F(BusConnectionTest, OutlivesManyBusesWithoutGrowing) {
    const auto address = BusAddress::parse(bus_.addressWithIdentity);
    BusSources sources(loop_, address, BusAddress{});
    BusConnection connection(loop_, address);
    ASSERT_SOON(connection.bus());

    constexpr int rounds = 500;
    constexpr int warmUp = 50;
    qsizetype descriptors = 0, threads = 0;
    int memory = -1;
    for (int round = 0; round < rounds; ++round) {
        if (round == warmUp) {
            descriptors = entries("/proc/self/fd");
            threads = entries("/proc/self/task");
            memory = ownMemory();
        }
        bus_.daemon.end();
        ASSERT_SOON(!connection.bus()) << round;
        bus_.start();
        ASSERT_SOON(connection.bus()) << round;
    }
    EXPECT_SOON(entries("/proc/self/fd") <= descriptors);
    EXPECT_EQ(entries("/proc/self/task"), threads);
    ASSERT_GT(memory, 0);
    EXPECT_LT(ownMemory() - memory, allowedGrowth);
}

TEST_F(BusConnectionTest, FindsABusThatComesLateWhereverItsSocketIs) {
    PrivateBus late;
    const QString abstractAddress =
        QString("unix:abstract=/tendel-test-%1").arg(QCoreApplication::applicationPid());
    BusConnection byFile(loop_, BusAddress::parse(late.address()));
    BusConnection byName(loop_, BusAddress::parse(abstractAddress));
    // Until two attempts have failed, so that the third is two seconds away.
    test::runFor(1600);
    EXPECT_FALSE(byFile.bus() || byName.bus());

    test::Child daemon;
    daemon.start("dbus-daemon", {"--session", "--nofork", "--address=" + abstractAddress});
    late.start();
    EXPECT_TRUE(test::runUntil([&] { return byFile.bus().has_value(); }, 1500));
    EXPECT_SOON(byName.bus());
}

TEST_F(BusConnectionTest, IsNotKeptByABusThatHangs) {
    bus_.daemon.signal(SIGSTOP);
    QElapsedTimer time;
    time.start();
    BusConnection connection(loop_, BusAddress::parse(bus_.address()));
    test::runFor(50);
    EXPECT_LT(time.elapsed(), 1000);
    EXPECT_FALSE(connection.bus());
    bus_.daemon.signal(SIGCONT);
    EXPECT_SOON(connection.bus());
}

TEST_F(BusConnectionTest, MakesEverythingUnknownUntilTheBusIsBack) {
    BusSources bus(loop_, BusAddress::parse(bus_.address()), BusAddress{});
    PresenceSources sources;
    bus.addTo(sources);
    const auto countKnown = [&] {
        const auto tells = [](auto* source) { return source->requests().has_value(); };
        const auto runs = [](auto* source) {
            return source->is(SystemState::screensaverRunning) == true;
        };
        return std::ranges::count_if(sources.wakeRequests, tells) +
               std::ranges::count_if(sources.system, runs);
    };
    // Each change makes the whole of it be asked, also while half of it is lost.
    std::vector<Subscription> subscriptions;
    for (auto* source : sources.wakeRequests)
        subscriptions.push_back(source->changed.connect([&] { countKnown(); }));

    for (int round = 0; round < 2; ++round) {
        MockService saver(bus_.address(), "org.gnome.ScreenSaver");
        saver.answer("GetActive", {true});
        MockService agent(bus_.address(), "org.kde.Solid.PowerManagement.PolicyAgent");
        agent.answer("HasInhibition", {false});
        agent.answer("ListInhibitions", {QVariant::fromValue(QList<Inhibition>{})});
        MockService manager(bus_.address(), "org.freedesktop.PowerManagement");
        manager.answer("GetInhibitors", {QStringList{}});
        ASSERT_SOON(countKnown() == 3) << round;
        bus_.daemon.end();
        EXPECT_SOON(countKnown() == 0) << round;
        bus_.start();
    }
}

}  // namespace
}  // namespace tendel

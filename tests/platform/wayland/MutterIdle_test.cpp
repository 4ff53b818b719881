#include "platform/linux/bus/MutterIdle.h"

#include "NestedCompositor.h"
#include "platform/IdleScript.h"
#include "platform/linux/bus/BusConnection.h"

namespace tendel {
namespace {

using MutterIdleTest = EventLoopTest;

TEST_F(MutterIdleTest, FollowsTheRealDisplayServer) {
    constexpr double threshold = 0.8;
    NestedCompositor mutter(NestedCompositor::Kind::mutter);
    BusConnection bus(loop_, BusAddress::parse(mutter.environment("DBUS_SESSION_BUS_ADDRESS")));
    MutterIdle idle(bus, loop_);
    idle.watch(threshold);
    test::expectCrossings(idle, threshold, [&](auto* words) { mutter.input(words); });
    idle.watch(threshold);

    mutter.stop();
    EXPECT_SOON(!idle.idleSeconds());
    mutter.start();
    EXPECT_SOON(idle.idleSeconds() >= threshold) << "the watch is kept";
}

}  // namespace
}  // namespace tendel

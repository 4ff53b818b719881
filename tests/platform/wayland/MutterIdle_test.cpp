#include "platform/linux/bus/MutterIdle.h"

#include "NestedCompositor.h"
#include "platform/linux/bus/BusConnection.h"

namespace tendel {
namespace {

using MutterIdleTest = EventLoopTest;

TEST_F(MutterIdleTest, FollowsTheRealDisplayServer) {
    constexpr double threshold = 0.8;
    NestedCompositor mutter(NestedCompositor::Kind::mutter);
    BusConnection bus(loop_, BusAddress::parse(mutter.environment("DBUS_SESSION_BUS_ADDRESS")));
    MutterIdle idle(bus, loop_);
    int crossings = 0;
    const auto counting = idle.crossed.connect([&] { ++crossings; });
    idle.watch(threshold);
    ASSERT_TRUE(test::runUntil([&] { return idle.tellsCrossings(); }));
    for (const auto* input : {"mousemove 100 100", "key Shift_L"}) {
        ASSERT_TRUE(test::runUntil([&] { return idle.idleSeconds() >= threshold; })) << input;
        crossings = 0;
        mutter.input(input);
        ASSERT_TRUE(test::runUntil([&] { return crossings > 0; }, 1000)) << input;
        EXPECT_LT(idle.idleSeconds().value(), threshold);
    }

    mutter.stop();
    EXPECT_TRUE(test::runUntil([&] { return !idle.idleSeconds(); }));
    mutter.start();
    EXPECT_TRUE(test::runUntil([&] { return idle.idleSeconds() >= threshold; }))
        << "the watch is kept";
}

}  // namespace
}  // namespace tendel

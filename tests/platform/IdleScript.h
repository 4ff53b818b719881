#pragma once

#include "presence/IdleSource.h"
#include "support/RunningLoop.h"

namespace tendel::test {

// The user does nothing until the threshold is crossed, comes back with a move and with a key, and
// is watched no longer. `input` takes the words of xdotool.
inline void expectCrossings(IdleSource& idle, double threshold,
                            const std::function<void(const char*)>& input) {
    ASSERT_SOON(idle.tellsCrossings());
    idle.watch(600);  // replaced by the next
    input("mousemove 10 10");
    idle.watch(threshold);
    runFor(200);
    int crossings = 0;
    const auto counting = idle.crossed.connect([&] { ++crossings; });
    for (const auto* what : {"mousemove 200 200", "key Shift_L"}) {
        ASSERT_SOON(crossings == 1) << what;
        const double told = idle.idleSeconds().value();
        EXPECT_GE(told, threshold);
        EXPECT_LT(told, threshold + 3);
        runFor(300);
        EXPECT_NEAR(idle.idleSeconds().value(), told + 0.3, 0.25);
        idle.watch(threshold);  // the same: what is known stays known
        EXPECT_EQ(crossings, 1) << "told more than once";
        input(what);
        ASSERT_TRUE(runUntil([&] { return crossings == 2; }, 1000)) << what;
        EXPECT_LT(idle.idleSeconds().value(), threshold);
        crossings = 0;
    }
    idle.watch(std::nullopt);
    runFor(1000);
    EXPECT_EQ(crossings, 0) << "nobody watches";
}

}  // namespace tendel::test

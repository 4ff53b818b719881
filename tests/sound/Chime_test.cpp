#include <gtest/gtest.h>

#include "RealTimeGuard.h"
#include "sound/SoundMeasures.h"

namespace tendel {
namespace {

using namespace measures;

TEST(Chime, IsStruckSoftlyRingsAtItsLevelAndEndsInSilence) {
    for (const char* const name : {"Glass", "Hero"})
        for (const double rate : {44100., 48000., 96000.}) {
            SCOPED_TRACE(name);
            const auto chime = makeChime(name, rate);
            Stereo heard = rendered(*chime, chimeSeconds + 1, rate, 333);
            const auto end = static_cast<std::ptrdiff_t>(chimeSeconds * rate);
            float peak = 0, step = heard.left.front();
            for (std::size_t i = 1; i < heard.left.size(); ++i) {
                peak = std::max({peak, std::abs(heard.left[i]), std::abs(heard.right[i])});
                if (i < static_cast<std::size_t>(rate / 1000))
                    step = std::max(step, std::abs(heard.left[i] - heard.left[i - 1]));
            }
            EXPECT_NEAR(decibels(peak), -9, 1);
            EXPECT_LT(step, 0.05);
            EXPECT_LT(decibels(std::abs(mean(heard.left))), -80);
            const auto isSilent = [](float x) { return x == 0; };
            EXPECT_TRUE(std::all_of(heard.left.begin() + end, heard.left.end(), isSilent));
            EXPECT_TRUE(std::all_of(heard.right.begin() + end, heard.right.end(), isSilent));
        }
    EXPECT_EQ(makeChime("Basso", 48000), nullptr);
}

}  // namespace
}  // namespace tendel

#include "sound/SoundSource.h"

#include <gtest/gtest.h>

#include <map>

#include "RealTimeGuard.h"
#include "sound/NoiseChannel.h"
#include "sound/SoundMeasures.h"

namespace tendel {
namespace {

using namespace measures;

constexpr double rate = 48000;
constexpr std::uint64_t seed = 42;

std::vector<FocusSound> allSounds() {
    std::vector<FocusSound> all;
    for (std::size_t i = 0; i < focusSoundNames.size(); ++i)
        all.push_back(static_cast<FocusSound>(i));
    return all;
}

Stereo sound(FocusSound which, double seconds, double sampleRate = rate, std::uint64_t with = seed,
             std::size_t piece = 1024) {
    return rendered(*makeSource(which, sampleRate, with), seconds, sampleRate, piece);
}

TEST(SoundRandom, GivesTheTopBitsOfSplitMix64) {
    SoundRandom random{0};
    // The generator's published first outputs for seed 0 begin e220a8 and 6e789e.
    EXPECT_EQ(random.uniform(), static_cast<float>(0xE220A8) / (1 << 24));
    EXPECT_EQ(random.state, 0x9E3779B97F4A7C15);
    EXPECT_EQ(random.noise(), static_cast<float>(0x6E789E) / (1 << 23) - 1);
}

TEST(Noise, FallsAsItsColourSaysAtEveryRate) {
    const struct {
        FocusSound noise;
        double from, slope;
    } cases[] = {
        {FocusSound::white, 50, 0}, {FocusSound::pink, 50, -3}, {FocusSound::brown, 500, -6}};
    for (const double sampleRate : {44100., 48000.})
        for (const auto& [noise, from, slope] : cases) {
            const Stereo heard = sound(noise, 20, sampleRate);
            EXPECT_LT(departure(heard, sampleRate, from, 10000, slope), 0.6)
                << rawValue(noise) << " at " << sampleRate;
        }
}

TEST(SoundSource, StaysInBoundsWithoutAnOffsetAndNeverAllocatesOrLocks) {
    for (const FocusSound which : allSounds()) {
        SCOPED_TRACE(rawValue(which));
        // The slow part of what falls towards the treble needs long to average out.
        const bool isSlow = which == FocusSound::pink || which == FocusSound::brown ||
                            which == FocusSound::fireplace;
        const double seconds = isSlow ? 600 : 60;
        const auto source = makeSource(which, rate, seed);
        std::vector<float> left(1024), right(1024);
        const int pieces = static_cast<int>(seconds * rate / 1024);
        double sums[2] = {};
        float peak = 0;
        for (int i = 0; i < pieces; ++i) {
            {
                const test::RealTimeGuard guard;
                source->render(left.data(), right.data(), left.size());
            }
            for (const auto* channel : {&left, &right}) {
                sums[channel == &right] += mean(*channel);
                for (const float x : *channel)
                    peak = std::max(peak, std::abs(x));
            }
        }
        EXPECT_LE(peak, 1);
        EXPECT_GT(peak, 0.1);
        for (const double sum : sums)
            EXPECT_LT(decibels(std::abs(sum / pieces)), -60);
    }
    EXPECT_EQ(test::RealTimeGuard::allocations(), 0);
    EXPECT_EQ(test::RealTimeGuard::locks(), 0);
}

// Seconds after which the loudness of a sound is that of any hour of it.
double settlingTime(FocusSound which) {
    if (which == FocusSound::ocean) return 300;
    return which == FocusSound::wind || which == FocusSound::ambient ? 120 : 30;
}

TEST(SoundSource, IsAsLoudAsTheNoisesAndAtEverySampleRate) {
    std::map<FocusSound, double> loud;
    for (const FocusSound which : allSounds())
        loud[which] = loudness(sound(which, settlingTime(which)), rate);
    const double noises =
        (loud[FocusSound::brown] + loud[FocusSound::pink] + loud[FocusSound::white]) / 3;
    for (const FocusSound which : allSounds()) {
        SCOPED_TRACE(rawValue(which));
        if (which >= FocusSound::ocean) {
            EXPECT_NEAR(loud[which], noises, 2);
        }
        for (const double other : {44100., 96000.})
            EXPECT_NEAR(loudness(sound(which, settlingTime(which), other), other), loud[which],
                        1.1);
    }
}

TEST(SoundSource, IsWide) {
    for (const FocusSound which : allSounds()) {
        const Stereo heard = sound(which, 60);
        // What hums or sings has a place; everything else comes from all around.
        const double most = which == FocusSound::ambient ? 0.7
                            : which == FocusSound::fan   ? 0.2
                                                         : 0.02;
        EXPECT_LT(std::abs(correlation(heard.left, heard.right)), most) << rawValue(which);
    }
}

TEST(SoundSource, DependsOnItsSeedAndNotOnHowMuchIsAskedForAtOnce) {
    for (const FocusSound which : allSounds()) {
        const Stereo heard = sound(which, 4), again = sound(which, 4);
        const Stereo pieces = sound(which, 4, rate, seed, 37), other = sound(which, 4, rate, 7);
        EXPECT_TRUE(heard.left == again.left && heard.right == again.right) << rawValue(which);
        EXPECT_NE(heard.left, other.left) << rawValue(which);
        float difference = 0;
        for (std::size_t i = 0; i < heard.left.size(); ++i)
            difference = std::max(difference, std::abs(heard.left[i] - pieces.left[i]));
        EXPECT_LT(difference, 1e-3) << rawValue(which);  // of the order of rounding
    }
}

// The largest bend of the wave against the others within 20 ms: some 5 in noise, 30 for a lone
// click.
double largestBend(std::span<const float> samples) {
    constexpr std::size_t window = 960;
    double largest = 0;
    for (std::size_t start = 1; start + window < samples.size(); start += window) {
        double sum = 0, most = 0;
        for (std::size_t i = start; i < start + window; ++i) {
            const double bend = double{samples[i - 1]} - 2 * double{samples[i]} + samples[i + 1];
            sum += bend * bend;
            most = std::max(most, std::abs(bend));
        }
        largest = std::max(largest, most / std::sqrt(sum / window));
    }
    return largest;
}

TEST(SoundSource, NeverClicksUnlessItIsMeantTo) {
    for (const FocusSound which : allSounds()) {
        const double bend = largestBend(sound(which, 60).left);
        if (which == FocusSound::rain || which == FocusSound::fireplace)
            EXPECT_GT(bend, 8) << rawValue(which);
        else
            EXPECT_LT(bend, 8) << rawValue(which);
    }
}

}  // namespace
}  // namespace tendel

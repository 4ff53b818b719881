#include "sound/LargeHall.h"

#include <gtest/gtest.h>

#include "sound/SoundMeasures.h"

namespace tendel {
namespace {

using namespace measures;

// Noise of one second in a band around a frequency, and the hall's answer to it for eight more.
std::vector<float> tail(double hertz, double sampleRate) {
    LargeHall hall(sampleRate);
    Stereo sound(static_cast<std::size_t>(9 * sampleRate));
    BandPass band{.frequency = BandPass::tuning(hertz, sampleRate), .damping = 0.2F};
    SoundRandom random{1};
    for (std::size_t i = 0; i < static_cast<std::size_t>(sampleRate); ++i)
        sound.left[i] = sound.right[i] = 0.2F * band.next(random.noise());
    hall.process(sound.left.data(), sound.right.data(), sound.left.size());
    // Of the tail too only the band counts.
    band.low = band.band = 0;
    for (float& sample : sound.left)
        sample = band.next(sample);
    return sound.left;
}

// Seconds to −60 dB from the stretch between −5 and −35 dB of the backward integral (Schroeder).
double decayTime(std::span<const float> tail, double sampleRate) {
    std::vector<double> left(tail.size() + 1);
    for (std::size_t i = tail.size(); i-- > 0;)
        left[i] = left[i + 1] + double{tail[i]} * tail[i];
    const auto below = [&](double dB) {
        const double power = left.front() * std::pow(10, dB / 10);
        return std::ranges::find_if(left, [&](double x) { return x < power; }) - left.begin();
    };
    return 2 * static_cast<double>(below(-35) - below(-5)) / sampleRate;
}

TEST(LargeHall, DecaysInItsTimeInEveryBandWithoutRinging) {
    for (const double sampleRate : {44100., 48000., 96000.})
        for (const auto& [hertz, seconds] : {std::pair{200., LargeHall::decaySeconds},
                                             {400., LargeHall::decaySeconds},
                                             {800., LargeHall::decaySeconds},
                                             {6000., LargeHall::brightDecaySeconds}}) {
            const std::vector<float> heard = tail(hertz, sampleRate);
            const auto from = static_cast<std::size_t>(1.1 * sampleRate);
            EXPECT_NEAR(decayTime(std::span(heard).subspan(from), sampleRate), seconds,
                        0.15 * seconds)
                << hertz << " Hz at " << sampleRate;
        }
}

TEST(LargeHall, MixesFortyPercentThatAreAsLoudAsTheRestAndHoldInMono) {
    LargeHall hall(48000);
    const std::size_t frames = 48000 * 10;
    Stereo dry(frames);
    SoundRandom random{1};
    for (std::size_t i = 0; i < frames; ++i) {
        dry.left[i] = 0.3F * random.noise();
        dry.right[i] = 0.3F * random.noise();
    }
    Stereo mixed = dry;
    hall.process(mixed.left.data(), mixed.right.data(), frames);
    EXPECT_FLOAT_EQ(mixed.left[0], (1 - LargeHall::wet) * dry.left[0]);  // before the first echo
    double dryPower = 0, wetPower = 0, monoPower = 0;
    for (std::size_t i = frames / 2; i < frames; ++i) {
        const double left = mixed.left[i] - (1 - LargeHall::wet) * dry.left[i];
        const double right = mixed.right[i] - (1 - LargeHall::wet) * dry.right[i];
        dryPower += dry.left[i] * dry.left[i];
        wetPower += left * left / (LargeHall::wet * LargeHall::wet);
        monoPower += (left + right) * (left + right) / 4 / (LargeHall::wet * LargeHall::wet);
    }
    EXPECT_NEAR(10 * std::log10(wetPower / dryPower), 0, 1);
    EXPECT_NEAR(10 * std::log10(monoPower / wetPower), -3, 1);  // as what has nothing in common
}

}  // namespace
}  // namespace tendel

#include "sound/SoundEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <mutex>
#include <random>
#include <set>
#include <thread>

#include "RealTimeGuard.h"
#include "base/SimulatedEventLoop.h"

namespace tendel {
namespace {

using namespace std::chrono_literals;
using test::RealTimeGuard;

constexpr std::size_t rate = 48000;
constexpr float height = 0.5F;  // of what the sources make

int sourcesAlive = 0;

// The same value for ever, so that what is heard is the gain.
class Constant : public SoundSource {
public:
    explicit Constant(float value = height) : value_(value) { ++sourcesAlive; }
    ~Constant() override { --sourcesAlive; }
    void render(float* left, float* right, std::size_t frames) override {
        std::fill_n(left, frames, value_);
        std::fill_n(right, frames, -value_);
    }

private:
    float value_;
};

// Renders when told, as if by the output's thread.
class HandOutput : public AudioOutput {
public:
    double sampleRate() const override { return reportedRate; }
    void start(AudioRenderer& renderer) override {
        EXPECT_FALSE(renderer_);
        renderer_ = &renderer;
        renderer.begin();
    }
    void stop() override {
        EXPECT_TRUE(renderer_);
        renderer_ = nullptr;
    }
    bool isOpen() const { return renderer_; }
    void interrupt() { renderer_->begin(); }

    // What comes out on the left; the right is checked to be its mirror image.
    void render(std::vector<float>& heard, std::size_t frames) {
        std::vector<float> left(frames), right(frames);
        if (renderer_) renderer_->render(left.data(), right.data(), frames);
        for (std::size_t i = 0; i < frames; ++i)
            if (left[i] != -right[i]) ADD_FAILURE() << "the channels differ";
        heard.insert(heard.end(), left.begin(), left.end());
    }

    double reportedRate = rate;

private:
    AudioRenderer* renderer_ = nullptr;
};

float fraction(std::minstd_rand& random) {
    return static_cast<float>(random() % 101) / 100;
}
SoundLevels randomLevels(std::minstd_rand& random) {
    SoundLevels levels;
    for (std::size_t i = 0; i < focusSoundNames.size(); ++i)
        if (random() % 3) levels[static_cast<FocusSound>(i)] = fraction(random);
    return levels;
}

class SoundEngineTest : public ::testing::Test {
protected:
    // Lets so much time pass, in the periods of an output.
    std::vector<float> listen(double seconds) {
        std::vector<float> heard;
        const auto frames = static_cast<std::size_t>(seconds * rate + 0.5);
        while (heard.size() < frames) {
            const auto period = std::min<std::size_t>(1000, frames - heard.size());
            output_.render(heard, period);
            loop_.advance(Duration(1000000 * period / rate));
        }
        return heard;
    }
    static float largestStep(const std::vector<float>& heard, float before) {
        float found = 0;
        for (const float x : heard)
            found = std::max(found, std::abs(x - std::exchange(before, x)));
        return found;
    }

    SimulatedEventLoop loop_{Instant{}};
    HandOutput output_;
    std::vector<std::uint64_t> seeds_;
    std::vector<double> rates_;
    std::set<FocusSound> failing_;
    SoundEngine engine_{loop_,
                        output_,
                        {[this](FocusSound sound, double sampleRate, std::uint64_t seed) {
                             seeds_.push_back(seed);
                             rates_.push_back(sampleRate);
                             return failing_.contains(sound) ? nullptr
                                                             : std::make_unique<Constant>();
                         },
                         [](std::string_view name, double) {
                             return name == "Glass" ? std::make_unique<Constant>(0.25F) : nullptr;
                         }}};
};

TEST_F(SoundEngineTest, MovesEveryGainByEqualStepsWithinItsFade) {
    const float never = std::numeric_limits<float>::quiet_NaN();
    struct Case {
        const char* what;
        float level, volume;
        double fade;
        float heard;
        double seconds;  // that it takes
    };
    const Case cases[] = {
        {"in", 0.8F, 1, 0.5, 0.8F, 0.5},
        {"softer", 0.2F, 1, 1, 0.2F, 1},
        {"louder than can be, at once", 7, 1, 0, 1, 0.03},
        {"to a level that is none", never, 1, 0.5, 0, 0.5},
        {"in again", 0.6F, 1, never, 0.6F, 0.03},
        {"half the volume", 0.6F, 0.5F, 1, 0.3F, 0.1},
        {"volume 0", 0.6F, 0, 1, 0, 0.1},
        {"volume back", 0.6F, 0.5F, 1, 0.3F, 0.1},
        {"out", 0, 0.5F, 2, 0, 2},
    };
    float before = 0, level = 0;
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        engine_.setVolume(c.volume);
        if (std::exchange(level, c.level) != c.level)
            engine_.play({{FocusSound::rain, c.level}}, c.fade);
        const auto heard = listen(c.seconds + 0.1);
        const auto end = static_cast<std::size_t>(c.seconds * rate);
        const float after = c.heard * height;
        const bool isUp = after > before;
        const bool isOneWay =
            isUp ? std::ranges::is_sorted(heard) : std::ranges::is_sorted(heard, std::greater());
        EXPECT_TRUE(isOneWay);
        EXPECT_NE(heard[end - end / 50], after) << "too early";
        EXPECT_FLOAT_EQ(heard[end + 2], after);
        EXPECT_LT(largestStep(heard, before), 1.01 * std::abs(after - before) / (c.seconds * rate));
        before = after;
    }
}

TEST_F(SoundEngineTest, BringsBackWhatFadesOutFromWhereItIs) {
    const SoundLevels one{{FocusSound::rain, 0.5F}};
    const SoundLevels both{{FocusSound::fan, 0.5F}, {FocusSound::rain, 0.5F}};
    engine_.play(both, 0.1);
    listen(0.2);
    engine_.play(one, 1);
    const float before = listen(0.5).back();
    EXPECT_NEAR(before, 0.75F * height, 0.001);
    engine_.play(both, 1);
    const auto heard = listen(1.1);
    EXPECT_LT(largestStep(heard, before), 0.26F * height / rate);
    EXPECT_EQ(heard.back(), height);
    EXPECT_EQ(seeds_.size(), 2U) << "the same voices";
    EXPECT_NE(seeds_[0], seeds_[1]);

    // One that has faded out for good begins anew.
    engine_.play(one, 0.1);
    listen(1);
    EXPECT_EQ(sourcesAlive, 1);
    engine_.play(both, 0.1);
    EXPECT_EQ(seeds_.size(), 3U);
}

TEST_F(SoundEngineTest, ClosesTheOutputAfterTheFadeUnlessSomethingIsWantedAgain) {
    for (const double rateTold : {48000.0, 0.0, -1.0}) {
        output_.reportedRate = rateTold;
        engine_.play({}, 1);
        EXPECT_FALSE(output_.isOpen());
        engine_.play({{FocusSound::brown, 1}}, 1);
        EXPECT_TRUE(output_.isOpen());
        EXPECT_EQ(rates_.back(), 48000);
        listen(1);
        engine_.play({}, 2);
        listen(1.9);
        engine_.play({{FocusSound::pink, 1}}, 1);
        for (const double fade : {5, 1, 3})
            engine_.play({}, fade);
        const auto heard = listen(1.1);
        EXPECT_TRUE(output_.isOpen()) << "what was rendered is still to be heard";
        EXPECT_EQ(heard.back(), 0);
        engine_.play({}, 0);
        listen(0.6);
        EXPECT_FALSE(output_.isOpen());
        EXPECT_EQ(sourcesAlive, 0);
        EXPECT_EQ(loop_.nextDue(), std::nullopt);
    }
}

TEST_F(SoundEngineTest, ChimesOverEverythingAndAlsoInSilence) {
    for (const float volume : {1.0F, 0.0F}) {
        engine_.setVolume(volume);
        engine_.play("Glass");
        const auto heard = listen(3);
        EXPECT_EQ(std::ranges::count(heard, 0.25F), std::ssize(heard)) << "not as it is";
        EXPECT_EQ(listen(0.4).back(), 0);
        EXPECT_TRUE(output_.isOpen());
        listen(0.2);
        EXPECT_FALSE(output_.isOpen());
    }
    // The mix goes on under it, and after it.
    engine_.play({{FocusSound::pink, 1}}, 0);
    engine_.setVolume(0.5F);
    listen(0.2);
    engine_.play("Glass");
    engine_.play({}, 1);
    listen(1.6);
    EXPECT_TRUE(output_.isOpen());
    EXPECT_EQ(listen(1).back(), 0.25F);
    listen(1);
    EXPECT_FALSE(output_.isOpen());
}

TEST_F(SoundEngineTest, GoesOnAfterFailuresAndFadesInAgainAfterAnInterruption) {
    failing_ = {FocusSound::ocean};
    ::testing::internal::CaptureStderr();
    engine_.play({{FocusSound::ocean, 1}, {FocusSound::pink, 1}}, 0);
    engine_.play("Gong");
    output_.failed.emit("Connection refused");
    EXPECT_EQ(::testing::internal::GetCapturedStderr(),
              "error sound: Couldn't create a voice for ocean\n"
              "error sound: Couldn't create a voice for Gong\n"
              "error sound: Couldn't start the sound engine: Connection refused\n");
    EXPECT_EQ(listen(0.1).back(), height) << "at the first start there is no second fade";
    output_.interrupt();
    const auto heard = listen(0.7);
    EXPECT_LT(largestStep(heard, 0), height / (0.5 * rate));
    EXPECT_EQ(heard.back(), height);
}

TEST_F(SoundEngineTest, HoldsNoMoreAndMoreWhileNothingRenders) {
    std::minstd_rand random(1);
    std::size_t most = 0;
    for (int i = 0; i < 10000; ++i) {
        engine_.play(i % 10 == 0 ? SoundLevels() : randomLevels(random), 1);
        engine_.play("Glass");
        loop_.advance(Duration(random() % 4000000));
        most = std::max(most, static_cast<std::size_t>(sourcesAlive));
    }
    EXPECT_LE(most, 17U);
    // What would have been heard long ago is not heard when there is an output at last.
    engine_.play({{FocusSound::pink, 1}}, 0);
    engine_.play("Glass");
    loop_.advance(10s);
    EXPECT_LE(std::ranges::max(listen(0.1)), height);
    engine_.play({}, 0);
    listen(1);
    EXPECT_EQ(sourcesAlive, 0);
}

TEST(SoundMixer, NeverLeavesFullScaleAndPassesBitByBitWhatIsSoft) {
    Limiter limiter(rate);
    std::minstd_rand random(1);
    float most = 0;
    const auto noise = [&](float amplitude) {
        return amplitude * (static_cast<float>(random() % 2001) / 1000 - 1);
    };
    for (const float amplitude : {0.79F, 3.0F, 30.0F, 0.5F})
        for (std::size_t block = 0; block < 20 * rate / 100; ++block) {
            float left[100], right[100], before[100];
            for (int i = 0; i < 100; ++i) {
                before[i] = left[i] = noise(amplitude);
                right[i] = noise(amplitude);
            }
            limiter.process(left, right, 100);
            for (int i = 0; i < 100; ++i)
                most = std::max({most, std::abs(left[i]), std::abs(right[i])});
            // What is soft is left alone, once what was loud has been forgotten.
            const bool isSettled = amplitude == 0.79F || block > 19 * rate / 100;
            if (amplitude < Limiter::threshold && isSettled) {
                ASSERT_TRUE(std::equal(left, left + 100, before));
            }
        }
    EXPECT_LT(most, 1);
    EXPECT_GT(most, 0.9F);
}

// What decays would otherwise get forty times as expensive at its end.
TEST(SoundMixer, RendersWithoutSubnormalNumbersAndLeavesTheThreadAsItWas) {
    constexpr float subnormal = 1e-40F;
    SoundMixer mixer;
    mixer.reset(rate);
    SoundVoiceRenderer voice(std::make_unique<Constant>(subnormal), 1, {1, 0});
    mixer.add(voice, SoundMixer::Bus::chimes);
    float left[64], right[64];
    mixer.render(left, right, 64);
#ifdef __SSE__
    EXPECT_EQ(std::ranges::count(left, 0.0F), 64);
#endif
    volatile float kept = subnormal;
    EXPECT_GT(kept * 0.5F, 0);
}

// Renders without a pause on a thread of its own.
class ThreadOutput : public AudioOutput {
public:
    ~ThreadOutput() override { EXPECT_FALSE(thread_.joinable()); }
    double sampleRate() const override { return rate; }
    void start(AudioRenderer& renderer) override {
        isWanted_ = true;
        thread_ = std::thread([this, &renderer] {
            std::minstd_rand random(7);
            float left[2048], right[2048];
            while (isWanted_) {
                const RealTimeGuard guard;
                if (random() % 200 == 0) renderer.begin();
                renderer.render(left, right, 1 + random() % 2048);
                frames += 1024;
                worst = std::max(worst, std::abs(*std::ranges::max_element(left)));
            }
            violations += RealTimeGuard::allocations() + RealTimeGuard::locks();
        });
    }
    void stop() override {
        isWanted_ = false;
        thread_.join();
    }

    // To be read while it is stopped.
    std::uint64_t frames = 0;
    float worst = 0;
    int violations = 0;

private:
    std::thread thread_;
    std::atomic<bool> isWanted_ = false;
};

TEST(SoundEngine, RendersRealSoundsWithoutAllocatingOrLockingWhileEverythingChanges) {
    if (RealTimeGuard::isAbleToCount) {
        std::mutex mutex;
        const RealTimeGuard guard;
        const int allocations = RealTimeGuard::allocations(), locks = RealTimeGuard::locks();
        const auto* volatile allocated = new int;
        delete allocated;
        mutex.lock();
        mutex.unlock();
        ASSERT_EQ(RealTimeGuard::allocations() - allocations, 2) << "the counters do not work";
        ASSERT_EQ(RealTimeGuard::locks() - locks, 1);
    }

    SimulatedEventLoop loop(Instant{});
    ThreadOutput output;
    {
        SoundEngine engine(loop, output);
        std::minstd_rand random(1);
        for (int i = 0; i < 2000; ++i) {
            engine.play(i % 7 == 0 ? SoundLevels() : randomLevels(random), fraction(random));
            engine.setVolume(fraction(random));
            if (i % 5 == 0) engine.play(i % 2 ? "Glass" : "Hero");
            loop.advance(Duration(random() % 3000000));
            std::this_thread::yield();
        }
    }
    EXPECT_GT(output.frames, rate) << "hardly anything was rendered";
    EXPECT_LE(output.worst, 1);
    EXPECT_EQ(output.violations, 0);
}

}  // namespace
}  // namespace tendel

#include "platform/linux/pulse/PulseOutput.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "AudioServer.h"
#include "sound/SoundEngine.h"

namespace tendel {
namespace {

using test::entries;

constexpr std::size_t rate = PulsePlayback::sampleRate;
constexpr float loudness = 0.5F;
constexpr float slope = loudness * 2 * std::numbers::pi_v<float> * 300 / rate;

// A tone on both channels, of which every jump shows.
class Tone : public SoundSource {
public:
    void render(float* left, float* right, std::size_t frames) override {
        for (std::size_t i = 0; i < frames; ++i, ++frame_)
            left[i] = right[i] =
                loudness * std::sin(static_cast<float>(frame_ % rate) * slope / loudness);
    }

private:
    std::size_t frame_ = 0;
};

// What is heard on an output, as it would come out of it.
class Recording {
public:
    Recording(const AudioServer& server, const QString& sink) : file_(server.file("heard")) {
        QFile::remove(file_);
        parec_.setStandardOutputFile(file_);
        parec_.start("parec", {"--device=" + sink + ".monitor", "--rate=48000", "--channels=2",
                               "--format=float32le", "--raw", "--latency-msec=40"});
        test::runUntil([&] { return !samples().empty(); });
    }

    // Of the left channel.
    std::vector<float> samples() const {
        QFile file(file_);
        if (!file.open(QIODevice::ReadOnly)) return {};
        const QByteArray bytes = file.readAll();
        std::vector<float> left(static_cast<std::size_t>(bytes.size()) / (2 * sizeof(float)));
        for (std::size_t i = 0; i < left.size(); ++i)
            std::memcpy(&left[i], bytes.data() + 2 * sizeof(float) * i, sizeof(float));
        return left;
    }
    // The peak of the last 50 ms.
    float level() const {
        float found = 0;
        const auto all = samples();
        for (std::size_t i = all.size() - std::min(all.size(), rate / 20); i < all.size(); ++i)
            found = std::max(found, std::abs(all[i]));
        return found;
    }
    bool isLoud() const {
        return test::runUntil([&] { return level() > 0.98F * loudness; }, 4000);
    }

private:
    QString file_;
    test::Child parec_;
};

class PulseOutputTest : public AudioServerTest {
protected:
    void startServer() {
        server_.start();
        server_.ask({"info"});
    }

    PulseOutput output_{loop_};
    SoundEngine engine_{loop_,
                        output_,
                        {[](auto, auto, auto) { return std::make_unique<Tone>(); },
                         [](auto, auto) { return nullptr; }}};
    int restarts_ = 0;
    std::vector<std::string> failures_;
    Subscription restarted_ = output_.restarted.connect([this] { ++restarts_; });
    Subscription failed_ =
        output_.failed.connect([this](const std::string& why) { failures_.push_back(why); });
};

TEST_P(PulseOutputTest, IsHeardWithoutAJumpAndLeavesNothingBehind) {
    startServer();
    Recording recording(server_, "nullsink");
    const auto threads = entries("/proc/self/task"), descriptors = entries("/proc/self/fd");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(recording.level(), 0);
        engine_.play({{FocusSound::pink, 1}}, 0.3);
        EXPECT_EQ(entries("/proc/self/task"), threads + 1);
        ASSERT_TRUE(recording.isLoud());
        engine_.play({}, 0.3);
        ASSERT_TRUE(test::runUntil([&] { return recording.level() == 0; }, 3000));
        ASSERT_TRUE(test::runUntil([&] { return entries("/proc/self/task") == threads; }, 2000));
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    }
    const auto heard = recording.samples();
    for (std::size_t i = 1; i < heard.size(); ++i)
        ASSERT_LT(std::abs(heard[i] - heard[i - 1]), slope * 1.01F);
    const auto reaches = [&](float level) {
        return std::ranges::find_if(heard, [&](float x) { return std::abs(x) > level; });
    };
    EXPECT_NEAR(static_cast<double>(reaches(0.98F * loudness) - reaches(1e-4F)) / rate, 0.3, 0.02);
    EXPECT_EQ(restarts_, 0);
    EXPECT_TRUE(failures_.empty());
}

TEST_P(PulseOutputTest, PlaysOnFadedInWhenTheServerComesBack) {
    engine_.play({{FocusSound::pink, 1}}, 0.1);
    ASSERT_SOON(failures_.size() == 1);
    for (int round = 0; round < 2; ++round) {
        startServer();
        const Recording recording(server_, "nullsink");
        ASSERT_TRUE(recording.isLoud());
        EXPECT_EQ(restarts_, round);
        server_.kill();
        // Half a second later it is tried in vain.
        ASSERT_SOON(failures_.size() == 2U + round);
    }
    EXPECT_EQ(failures_.front(), "Connection refused");
}

TEST_P(PulseOutputTest, MovesToAnotherOutputAndWaitsForOneWhenThereIsNone) {
    startServer();
    const auto addSink = [this](const char* name) {
        return server_.ask({"load-module", "module-null-sink", QString("sink_name=") + name});
    };
    const auto removeSinksBut = [this](const QByteArray& kept) {
        for (const auto& module : server_.ask({"list", "modules", "short"}).split('\n'))
            if (module.contains("sink_name=") && !module.contains("Source") &&
                !(kept.size() > 0 && module.startsWith(kept.trimmed())))
                server_.ask({"unload-module", module.split('\t').front()});
    };
    const auto isHeardOn = [this](const char* sink, const std::function<void()>& change) {
        const Recording recording(server_, sink);
        change();
        return recording.isLoud();
    };
    engine_.play({{FocusSound::pink, 1}}, 0.1);
    ASSERT_TRUE(isHeardOn("nullsink", [] {}));
    addSink("second");
    EXPECT_TRUE(isHeardOn("second", [&] { server_.ask({"set-default-sink", "second"}); }));
    const auto third = addSink("third");
    EXPECT_TRUE(isHeardOn("third", [&] { removeSinksBut(third); }));
    EXPECT_EQ(restarts_, 0);
    EXPECT_TRUE(failures_.empty());
    if (GetParam() == ServerKind::pipeWire) return;  // has an output of its own for this case

    removeSinksBut({});
    // In vain, half a second later.
    ASSERT_TRUE(test::runUntil([&] { return failures_.size() == 1; }, 2000));
    addSink("fourth");
    EXPECT_TRUE(isHeardOn("fourth", [] {}));
    EXPECT_EQ(restarts_, 1);
}

INSTANTIATE_TEST_SUITE_P(, PulseOutputTest, everyServer, nameOf);

}  // namespace
}  // namespace tendel

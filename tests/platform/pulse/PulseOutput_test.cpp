#include "platform/linux/pulse/PulseOutput.h"

#include <gtest/gtest.h>

#include <QDir>

#include <cmath>
#include <numbers>

#include "AudioServer.h"
#include "platform/linux/LinuxEventLoop.h"
#include "sound/SoundEngine.h"

namespace tendel {
namespace {

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
    ~Recording() {
        parec_.kill();
        parec_.waitForFinished();
    }

    // Of the left channel.
    std::vector<float> samples() const {
        QFile file(file_);
        if (!file.open(QIODevice::ReadOnly)) return {};
        const QByteArray bytes = file.readAll();
        const auto frames = static_cast<std::size_t>(bytes.size()) / 8;
        std::vector<float> left(frames);
        for (std::size_t i = 0; i < frames; ++i)
            std::memcpy(&left[i], bytes.data() + 8 * i, sizeof(float));
        return left;
    }
    // The peak of the last 50 ms.
    float level() const {
        const auto all = samples();
        return peak(all, all.size() < rate / 20 ? 0 : all.size() - rate / 20);
    }
    static float peak(const std::vector<float>& samples, std::size_t from) {
        float found = 0;
        for (std::size_t i = from; i < samples.size() && i < from + rate / 20; ++i)
            found = std::max(found, std::abs(samples[i]));
        return found;
    }
    float largestStep() const {
        const auto all = samples();
        float found = 0;
        for (std::size_t i = 1; i < all.size(); ++i)
            found = std::max(found, std::abs(all[i] - all[i - 1]));
        return found;
    }
    // Seconds from the first sound to full loudness.
    double rise() const {
        const auto all = samples();
        const auto first = std::ranges::find_if(all, [](float x) { return std::abs(x) > 1e-4F; });
        const auto full =
            std::ranges::find_if(all, [](float x) { return std::abs(x) > 0.98F * loudness; });
        return static_cast<double>(full - first) / rate;
    }

private:
    QString file_;
    QProcess parec_;
};

class PulseOutputTest : public ::testing::TestWithParam<ServerKind> {
protected:
    static std::ptrdiff_t entries(const char* folder) {
        return QDir(folder)
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    }
    void startServer() {
        server_.start();
        server_.ask({"info"});
    }
    bool isHeard(const Recording& recording) {
        return test::runUntil([&] { return recording.level() > 0.98F * loudness; }, 4000);
    }

    test::Application application_;
    AudioServer server_{GetParam()};
    LinuxEventLoop loop_;
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
        ASSERT_TRUE(isHeard(recording));
        engine_.play({}, 0.3);
        ASSERT_TRUE(test::runUntil([&] { return recording.level() == 0; }, 3000));
        ASSERT_TRUE(test::runUntil([&] { return entries("/proc/self/task") == threads; }, 2000));
        EXPECT_EQ(entries("/proc/self/fd"), descriptors);
    }
    EXPECT_LT(recording.largestStep(), slope * 1.01F);
    EXPECT_NEAR(recording.rise(), 0.3, 0.02);
    EXPECT_EQ(restarts_, 0);
    EXPECT_TRUE(failures_.empty());
}

TEST_P(PulseOutputTest, PlaysOnFadedInWhenTheServerComesBack) {
    engine_.play({{FocusSound::pink, 1}}, 0.1);
    ASSERT_TRUE(test::runUntil([&] { return failures_.size() == 1; }));
    for (int round = 0; round < 2; ++round) {
        startServer();
        Recording recording(server_, "nullsink");
        ASSERT_TRUE(isHeard(recording));
        EXPECT_EQ(restarts_, round);
        server_.kill();
        // Half a second later it is tried in vain.
        ASSERT_TRUE(test::runUntil([&] { return failures_.size() == 2U + round; }));
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
    engine_.play({{FocusSound::pink, 1}}, 0.1);
    {
        const Recording recording(server_, "nullsink");
        ASSERT_TRUE(isHeard(recording));
    }
    addSink("second");
    {
        const Recording recording(server_, "second");
        server_.ask({"set-default-sink", "second"});
        EXPECT_TRUE(isHeard(recording)) << "does not follow the default output";
    }
    const auto third = addSink("third");
    {
        const Recording recording(server_, "third");
        removeSinksBut(third);
        EXPECT_TRUE(isHeard(recording)) << "does not go on when its output goes away";
    }
    EXPECT_EQ(restarts_, 0);
    EXPECT_TRUE(failures_.empty());
    if (GetParam() == ServerKind::pipeWire) return;  // has an output of its own for this case

    removeSinksBut({});
    // In vain, half a second later.
    ASSERT_TRUE(test::runUntil([&] { return failures_.size() == 1; }, 2000));
    addSink("fourth");
    const Recording recording(server_, "fourth");
    EXPECT_TRUE(isHeard(recording));
    EXPECT_EQ(restarts_, 1);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(, PulseOutputTest,
                         ::testing::Values(ServerKind::pulseAudio, ServerKind::pipeWire),
                         [](const auto& server) {
                             return server.param == ServerKind::pulseAudio ? "PulseAudio"
                                                                           : "PipeWire";
                         });

}  // namespace tendel

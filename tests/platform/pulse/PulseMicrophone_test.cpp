#include "platform/linux/pulse/PulseMicrophone.h"

#include <pulse/context.h>
#include <pulse/stream.h>

#include "AudioServer.h"

namespace tendel {
namespace {

using test::entries;

// A stream that records, made by this process in another program's name.
class Recorder {
public:
    Recorder(EventLoop& loop, const char* device, pa_stream_flags_t flags) : connection_(loop) {
        connection_.onReady = [this, device, flags](pa_context* context) {
            constexpr pa_sample_spec floats{PA_SAMPLE_FLOAT32NE, 25, 1};
            pa_proplist* properties = pa_proplist_new();
            pa_proplist_sets(properties, PA_PROP_APPLICATION_PROCESS_BINARY, "meter");
            stream_ = pa_stream_new_with_proplist(context, "test", &floats, nullptr, properties);
            pa_proplist_free(properties);
            pa_stream_connect_record(stream_, device, nullptr, flags);
        };
        connection_.open();
    }
    ~Recorder() {
        pa_stream_disconnect(stream_);
        pa_stream_unref(stream_);
    }

    bool isRunning() const { return stream_ && pa_stream_get_state(stream_) == PA_STREAM_READY; }
    void pause(bool isPaused) {
        pa_operation_unref(pa_stream_cork(stream_, isPaused, nullptr, nullptr));
    }

private:
    pa_stream* stream_ = nullptr;
    PulseConnection connection_;
};

class PulseMicrophoneTest : public AudioServerTest {
protected:
    bool isListed(const std::string& program) const {
        const auto users = microphone_.users();
        return users && users->size() == 1 && users->front().path.ends_with("/" + program);
    }
    // Whether it is known, within a second, that nobody records any more.
    bool isNobodyListed() const {
        return test::runUntil([&] { return microphone_.users() == nobody; }, 1000);
    }
    std::optional<bool> isInUse() const {
        return CallMonitor({&microphone_}, {}, MicrophonePolicy::forLinux(), ::getpid())
            .isMicrophoneInUse();
    }
    void startServer() {
        server_.start();
        ASSERT_SOON(microphone_.users() == nobody);
    }

    const std::optional<std::vector<MicrophoneUser>> nobody{std::in_place};
    mutable PulseMicrophone microphone_{loop_};
};

TEST_P(PulseMicrophoneTest, TellsOfAProgramThatRecordsWithinASecondAndOfItsEnd) {
    startServer();
    struct Case {
        const char* program;
        QStringList arguments;
        const char* executable;
    };
    std::vector<Case> cases{{"parec", {"--device=nullsource"}, "pacat"}};
    if (GetParam() == ServerKind::pipeWire)
        cases.push_back({"pw-record", {"--target=nullsource", server_.file("out.wav")}, "pw-cat"});
    for (const auto& c : cases) {
        test::Child recorder;
        recorder.setStandardOutputFile(QProcess::nullDevice());
        recorder.start(c.program, c.arguments);
        ASSERT_TRUE(test::runUntil([&] { return isListed(c.executable); }, 1000)) << c.program;
        EXPECT_EQ(microphone_.users()->front().pid, recorder.processId());
        EXPECT_EQ(isInUse(), true);
        recorder.kill();
        EXPECT_TRUE(isNobodyListed()) << c.program;
    }
}

TEST_P(PulseMicrophoneTest, LeavesOutPausedStreamsAndCallsMetersAndMonitorsWhatTheyAre) {
    startServer();
    struct Case {
        const char* what;
        const char* device;
        pa_stream_flags_t flags;
        bool recordsPlayback, metersLevel, isInUse;
    };
    const Case cases[] = {
        {"microphone", "nullsource", PA_STREAM_NOFLAGS, false, false, true},
        {"level meter", "nullsource", PA_STREAM_PEAK_DETECT, false, true, false},
        {"what plays", "nullsink.monitor", PA_STREAM_NOFLAGS, true, false, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        Recorder recorder(loop_, c.device,
                          static_cast<pa_stream_flags_t>(c.flags | PA_STREAM_START_CORKED));
        ASSERT_SOON(recorder.isRunning());
        int told = 0;
        const auto keep = microphone_.changed.connect([&] { ++told; });
        for (int round = 0; round < 2; ++round) {
            recorder.pause(false);
            ASSERT_TRUE(test::runUntil([&] { return microphone_.users() != nobody; }, 1000));
            const MicrophoneUser expected{.path = "meter",
                                          .name = "Tendel",
                                          .recordsPlayback = c.recordsPlayback,
                                          .metersLevel = c.metersLevel};
            EXPECT_EQ(microphone_.users()->front(), expected);
            EXPECT_EQ(isInUse(), c.isInUse);
            recorder.pause(true);
            ASSERT_TRUE(isNobodyListed());
        }
        EXPECT_EQ(told, 4);
    }
}

INSTANTIATE_TEST_SUITE_P(, PulseMicrophoneTest, everyServer, nameOf);

using PulseConnectionTest = PulseMicrophoneTest;

TEST_P(PulseConnectionTest, FindsAServerAtOnceWhenItsSocketAppears) {
    test::runFor(1600);  // two attempts have failed, the third is two seconds away
    server_.start();
    EXPECT_TRUE(test::runUntil([&] { return microphone_.users() == nobody; }, 1500));
}

TEST_P(PulseConnectionTest, HoldsNoMoreDescriptorsAndThreadsAfterFiveHundredRestarts) {
    const auto addressSpace = [] {  // bytes
        QFile pages("/proc/self/statm");
        EXPECT_TRUE(pages.open(QIODevice::ReadOnly));
        return pages.readAll().split(' ').front().toLongLong() * ::sysconf(_SC_PAGESIZE);
    };
    startServer();
    server_.kill();
    ASSERT_SOON(!microphone_.users());
    const auto mapped = addressSpace();
    const auto descriptors = entries("/proc/self/fd"), threads = entries("/proc/self/task");
    for (int round = 0; round < 500; ++round) {
        SCOPED_TRACE(round);
        server_.start();
        // Every other server goes before or while it is asked.
        const bool isCutShort = round % 2;
        const bool isFound = test::runUntil([&] { return microphone_.users() == nobody; },
                                            isCutShort ? round % 40 : 10000);
        ASSERT_TRUE(isFound || isCutShort);
        server_.kill();
        ASSERT_SOON(!microphone_.users());
    }
    EXPECT_SOON(entries("/proc/self/fd") == descriptors) << "the last attempt may be under way";
    EXPECT_EQ(entries("/proc/self/task"), threads);
    EXPECT_LT(addressSpace() - mapped, 1 << 30) << "a connection that stays behind has 64 MB";
}

INSTANTIATE_TEST_SUITE_P(, PulseConnectionTest, testing::Values(ServerKind::pulseAudio), nameOf);

}  // namespace
}  // namespace tendel

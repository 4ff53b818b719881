#include <benchmark/benchmark.h>
#include <time.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "sound/FlushDenormals.h"
#include "sound/NoiseChannel.h"
#include "sound/SoundMixer.h"
#include "sound/SoundSource.h"

// What a frame of each sound costs, and of all nine with the reverb: "ns" of processor time a
// stereo frame at 48 kHz, "of_white" against a loop in the same run that only writes white noise to
// memory, "core" the share of one core (percent).

namespace tendel {
namespace {

constexpr std::size_t frames = 4096;
constexpr double sampleRate = 48000;

// Seconds of processor time of this thread.
double processorTime() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

struct Buffers {
    std::vector<float> left = std::vector<float>(frames), right = std::vector<float>(frames);
};

// Nanoseconds a frame, the best of some runs.
double whiteNanoseconds() {
    Buffers out;
    SoundRandom random{1};
    double best = 1e9;
    for (int run = 0; run < 50; ++run) {
        const double start = processorTime();
        for (std::size_t i = 0; i < frames; ++i) {
            out.left[i] = random.noise();
            out.right[i] = random.noise();
        }
        benchmark::DoNotOptimize(out.left.data());
        benchmark::ClobberMemory();
        const double taken = processorTime() - start;
        best = std::min(best, taken * 1e9 / frames);
    }
    return best;
}

// Times one block of `frames` after the bare loop, so that both meet the same disturbances.
void measure(benchmark::State& state, Buffers& out, const std::function<void()>& renderBlock) {
    const double white = whiteNanoseconds();
    const double start = processorTime();
    for (auto _ : state) {
        renderBlock();
        benchmark::DoNotOptimize(out.left.data());
        benchmark::ClobberMemory();
    }
    const double taken = processorTime() - start;
    const double each = taken * 1e9 / static_cast<double>(state.iterations()) / frames;
    state.counters["ns"] = each;
    state.counters["of_white"] = each / white;
    state.counters["core"] = each * sampleRate * 1e-9 * 100;
}

void render(benchmark::State& state, const std::vector<FocusSound>& sounds) {
    const FlushDenormals asOnTheAudioThread;
    std::vector<std::unique_ptr<SoundSource>> sources;
    for (const FocusSound sound : sounds)
        sources.push_back(makeSource(sound, sampleRate, 1));
    Buffers out;
    // Long enough for every note and drop to have company.
    for (const auto& source : sources)
        for (int i = 0; i < 500; ++i)
            source->render(out.left.data(), out.right.data(), frames);
    measure(state, out, [&] {
        for (const auto& source : sources)
            source->render(out.left.data(), out.right.data(), frames);
    });
}

// A source that costs next to nothing.
class Level : public SoundSource {
public:
    void render(float* left, float* right, std::size_t count) override {
        std::fill_n(left, count, 0.05F);
        std::fill_n(right, count, 0.05F);
    }
};

enum class Gains { steady, moving };

// What is added to the sounds themselves: nine gains, the sum, the volume and the limiter.
void mix(benchmark::State& state, Gains gains) {
    SoundMixer mixer;
    mixer.reset(sampleRate);
    std::vector<std::unique_ptr<SoundVoiceRenderer>> voices;
    for (std::size_t i = 0; i < focusSoundNames.size(); ++i) {
        voices.push_back(std::make_unique<SoundVoiceRenderer>(std::make_unique<Level>(), 0.6F,
                                                              VoiceGain::Aim{0.6F, 0}));
        mixer.add(*voices.back(), SoundMixer::Bus::sounds);
    }
    Buffers out;
    float target = 0.6F;
    measure(state, out, [&] {
        if (gains == Gains::moving) {
            target = 1 - target;
            for (const auto& voice : voices)
                voice->gain.moveTo({target, frames});
        }
        mixer.render(out.left.data(), out.right.data(), frames);
    });
}

int registerAll() {
    benchmark::RegisterBenchmark("mixNineSteady", mix, Gains::steady);
    benchmark::RegisterBenchmark("mixNineMoving", mix, Gains::moving);
    std::vector<FocusSound> all;
    for (const std::string_view name : focusSoundNames) {
        all.push_back(focusSound(name).value());
        benchmark::RegisterBenchmark(std::string(name).c_str(), render,
                                     std::vector<FocusSound>{all.back()});
    }
    benchmark::RegisterBenchmark("allNine", render, all);
    return 0;
}
const int registered = registerAll();

}  // namespace
}  // namespace tendel

BENCHMARK_MAIN();

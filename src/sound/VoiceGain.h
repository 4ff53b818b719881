#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>

namespace tendel {

// The gain that something which sounds is to have: the main thread sets it, the audio thread
// follows it. Also tells the main thread when the audio thread is done with the voice.
class VoiceGain {
public:
    struct Aim {
        float target = 0;
        std::uint32_t frames = 0;  // from the present level to there

        friend bool operator==(const Aim&, const Aim&) = default;
    };

    explicit VoiceGain(Aim aim) : aim_(aim) {}

    // Main thread. False when the voice is finished, which is for good.
    bool moveTo(Aim aim) {
        Aim before = aim_.load(std::memory_order_acquire);
        while (before != finished)
            if (aim_.compare_exchange_weak(before, aim, std::memory_order_acq_rel)) return true;
        return false;
    }
    // Main thread. Once it is, the audio thread does not touch the voice any more.
    bool isFinished() const { return aim_.load(std::memory_order_acquire) == finished; }

    // Audio thread.
    Aim aim() const { return aim_.load(std::memory_order_acquire); }
    // Audio thread: its last access to the voice, unless the main thread wants it to go on after
    // all, which it tells by false.
    bool finish(Aim seen) {
        return aim_.compare_exchange_strong(seen, finished, std::memory_order_acq_rel);
    }

private:
    static constexpr Aim finished{-1, 0};

    std::atomic<Aim> aim_;
    static_assert(std::atomic<Aim>::is_always_lock_free);
};

// A gain that moves toward its target by the same small step each sample, so that no change of it
// clicks. Audio thread only.
class GainRamp {
public:
    explicit GainRamp(float level) : level_(level), aim_{level, 0} {}

    // A new aim starts from the present level; the one that it has already goes on.
    void follow(VoiceGain::Aim aim);
    // Down at once, and up to the same target again.
    void restart(std::uint32_t frames);
    // Multiplies the samples by it.
    void apply(float* left, float* right, std::size_t frames);

    bool isSilent() const { return level_ == 0; }

private:
    double level_;  // a step of a long fade would be lost beside a level of single precision
    VoiceGain::Aim aim_;
    double step_ = 0;
};

}  // namespace tendel

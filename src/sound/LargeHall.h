#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "sound/Filters.h"

namespace tendel {

// The reverb of a large hall, 40 % of what comes out: a feedback delay network of eight lines
// (Jot, Chaigne, "Digital delay networks for designing artificial reverberators", 1991) mixed by a
// Hadamard matrix. The lengths wander a little, so that no tone stands in it. Stereo in and out;
// left and right are different sums of the same lines, which do not cancel in mono. All memory is
// taken at construction.
class LargeHall {
public:
    static constexpr float wet = 0.4F;
    // To −60 dB: below about 1 kHz, and at 6 kHz, where the air takes more.
    static constexpr double decaySeconds = 3.6;
    static constexpr double brightDecaySeconds = 1.5;

    explicit LargeHall(double sampleRate);
    void process(float* left, float* right, std::size_t frames);

private:
    static constexpr std::size_t lineCount = 8;
    static constexpr std::size_t blockFrames = 64;  // less than the shortest delay

    class Delay {
    public:
        explicit Delay(std::size_t longest);
        void write(float x) { samples_[position_++ & mask_] = x; }
        // What was written so many samples before the next write will be.
        float read(std::size_t delay) const { return samples_[(position_ - delay) & mask_]; }

    private:
        std::vector<float> samples_;
        std::size_t mask_;
        std::size_t position_ = 0;
    };

    // Spreads a click over its delay and leaves the spectrum as it is (Schroeder).
    struct Diffuser {
        Delay delay;
        std::size_t length;

        float next(float x);
    };

    struct Line {
        Delay delay;
        std::size_t length;
        float gain;  // of the decay below 1 kHz
        OnePoleLowPass air;
        float wander = 0;  // samples longer than `length`
        float wanderStep = 0;
        float phase;  // turns
        float phaseStep;
    };

    static Line line(std::size_t index, double sampleRate);
    void wander();
    void processBlock(float* left, float* right, std::size_t frames);

    float depth_;  // of the wandering, samples
    std::size_t preDelay_;
    Delay leftInput_, rightInput_;
    OnePoleHighPass leftLowCut_, rightLowCut_;
    std::vector<Diffuser> leftDiffusers_, rightDiffusers_;
    std::vector<Line> lines_;
    std::size_t sample_ = 0;  // of the block
};

}  // namespace tendel

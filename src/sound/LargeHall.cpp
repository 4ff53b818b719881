#include "sound/LargeHall.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

#include "sound/FastSine.h"

namespace tendel {

namespace {

constexpr double preDelaySeconds = 0.022;
constexpr double lowCutOff = 70;
constexpr double wanderSeconds = 0.00016;
constexpr double brightFrequency = 6000;
constexpr float diffusion = 0.62F;
constexpr std::array lineSeconds{0.0437, 0.0523, 0.0611, 0.0689, 0.0773, 0.0859, 0.0947, 0.1061};
constexpr std::array wanderHertz{0.31, 0.37, 0.43, 0.53, 0.59, 0.67, 0.73, 0.83};
constexpr std::array leftDiffuserSeconds{0.0047, 0.0083, 0.0137};
constexpr std::array rightDiffuserSeconds{0.0053, 0.0091, 0.0127};
// What makes noise as loud in the hall as without it.
constexpr float wetGain = 0.45F;
// Keeps the tail from becoming subnormal; far below what can be heard.
constexpr float bias = 1e-15F;

// Lengths without a common divisor do not repeat together.
std::size_t primeFrom(double samples) {
    auto candidate = static_cast<std::size_t>(samples) | 1;
    const auto isPrime = [](std::size_t n) {
        for (std::size_t d = 3; d * d <= n; d += 2)
            if (n % d == 0) return false;
        return true;
    };
    while (!isPrime(candidate))
        candidate += 2;
    return candidate;
}

double gainOf(double delaySeconds, double decaySeconds) {
    return std::pow(0.001, delaySeconds / decaySeconds);
}

// The one-pole low-pass with unity gain at 0 Hz and a given gain at a given frequency: from
// gain² = (1 − p)² ÷ (1 − 2p·cos ω + p²), solved for the pole p.
OnePoleLowPass absorption(double gain, double frequency, double sampleRate) {
    const double square = gain * gain;
    const double cosine = std::cos(2 * std::numbers::pi * frequency / sampleRate);
    const double half = (1 - square * cosine) / (1 - square);
    OnePoleLowPass filter;
    filter.coefficient = static_cast<float>(1 - (half - std::sqrt(half * half - 1)));
    return filter;
}

}  // namespace

LargeHall::Delay::Delay(std::size_t longest)
    : samples_(std::bit_ceil(longest + 1)), mask_(samples_.size() - 1) {}

float LargeHall::Diffuser::next(float x) {
    const float delayed = delay.read(length);
    const float inside = x + diffusion * delayed;
    delay.write(inside);
    return delayed - diffusion * inside;
}

LargeHall::Line LargeHall::line(std::size_t index, double sampleRate) {
    const std::size_t length = primeFrom(lineSeconds[index] * sampleRate);
    const double seconds = static_cast<double>(length) / sampleRate;
    const double gain = gainOf(seconds, decaySeconds);
    const double bright = gainOf(seconds, brightDecaySeconds) / gain;
    return {.delay = Delay(length + static_cast<std::size_t>(2 * wanderSeconds * sampleRate) + 2),
            .length = length,
            .gain = static_cast<float>(gain),
            .air = absorption(bright, brightFrequency, sampleRate),
            .phase = static_cast<float>(index) / lineCount,
            .phaseStep = static_cast<float>(wanderHertz[index] * blockFrames / sampleRate)};
}

LargeHall::LargeHall(double sampleRate)
    : depth_(static_cast<float>(wanderSeconds * sampleRate)),
      preDelay_(static_cast<std::size_t>(preDelaySeconds * sampleRate)),
      leftInput_(preDelay_),
      rightInput_(preDelay_),
      leftLowCut_(lowCutOff, sampleRate),
      rightLowCut_(lowCutOff, sampleRate) {
    for (std::size_t i = 0; i < leftDiffuserSeconds.size(); ++i) {
        const std::size_t left = primeFrom(leftDiffuserSeconds[i] * sampleRate);
        const std::size_t right = primeFrom(rightDiffuserSeconds[i] * sampleRate);
        leftDiffusers_.push_back({Delay(left), left});
        rightDiffusers_.push_back({Delay(right), right});
    }
    for (std::size_t i = 0; i < lineCount; ++i)
        lines_.push_back(line(i, sampleRate));
    for (Line& line : lines_)
        line.wander = depth_ * (1 + fastSine(line.phase));
}

void LargeHall::wander() {
    for (Line& line : lines_) {
        line.phase += line.phaseStep;
        if (line.phase >= 1) line.phase -= 1;
        const float target = depth_ * (1 + fastSine(line.phase));
        line.wanderStep = (target - line.wander) / blockFrames;
    }
}

void LargeHall::processBlock(float* left, float* right, std::size_t frames) {
    float lines[lineCount][blockFrames];
    for (std::size_t l = 0; l < lineCount; ++l) {
        Line& line = lines_[l];
        for (std::size_t i = 0; i < frames; ++i) {
            line.wander += line.wanderStep;
            const auto whole = static_cast<std::size_t>(static_cast<int>(line.wander));
            const float part = line.wander - static_cast<float>(static_cast<int>(line.wander));
            // Nothing of this block is written yet: its samples lie that much nearer.
            const std::size_t delay = line.length + whole - i;
            const float near = line.delay.read(delay);
            const float far = line.delay.read(delay + 1);
            lines[l][i] = line.gain * line.air.next(near + part * (far - near));
        }
    }

    float leftWet[blockFrames], rightWet[blockFrames];
    float leftIn[blockFrames], rightIn[blockFrames];
    for (std::size_t i = 0; i < frames; ++i) {
        leftInput_.write(left[i]);
        rightInput_.write(right[i]);
        float l = leftLowCut_.next(leftInput_.read(preDelay_)) + bias;
        float r = rightLowCut_.next(rightInput_.read(preDelay_)) + bias;
        for (Diffuser& diffuser : leftDiffusers_)
            l = diffuser.next(l);
        for (Diffuser& diffuser : rightDiffusers_)
            r = diffuser.next(r);
        leftIn[i] = l;
        rightIn[i] = r;
    }
    for (std::size_t i = 0; i < frames; ++i) {
        leftWet[i] = lines[0][i] + lines[1][i] - lines[2][i] - lines[3][i] + lines[4][i] -
                     lines[5][i] + lines[6][i] - lines[7][i];
        rightWet[i] = lines[0][i] - lines[1][i] + lines[2][i] - lines[3][i] + lines[4][i] +
                      lines[5][i] - lines[6][i] - lines[7][i];
    }

    // The Hadamard matrix of order 8 in three rounds of sums and differences.
    for (std::size_t half = 1; half < lineCount; half *= 2)
        for (std::size_t l = 0; l < lineCount; ++l) {
            if (l & half) continue;
            float* const a = lines[l];
            float* const b = lines[l + half];
            for (std::size_t i = 0; i < frames; ++i) {
                const float sum = a[i] + b[i];
                b[i] = a[i] - b[i];
                a[i] = sum;
            }
        }
    const float scale = 1 / std::sqrt(static_cast<float>(lineCount));
    for (std::size_t l = 0; l < lineCount; ++l) {
        const float* const in = l % 2 == 0 ? leftIn : rightIn;
        for (std::size_t i = 0; i < frames; ++i)
            lines_[l].delay.write(scale * lines[l][i] + in[i]);
    }

    for (std::size_t i = 0; i < frames; ++i) {
        left[i] = (1 - wet) * left[i] + wet * wetGain * leftWet[i];
        right[i] = (1 - wet) * right[i] + wet * wetGain * rightWet[i];
    }
}

void LargeHall::process(float* left, float* right, std::size_t frames) {
    for (std::size_t done = 0; done < frames;) {
        if (sample_ == 0) wander();
        const std::size_t length = std::min(frames - done, blockFrames - sample_);
        processBlock(left + done, right + done, length);
        sample_ = (sample_ + length) % blockFrames;
        done += length;
    }
}

}  // namespace tendel

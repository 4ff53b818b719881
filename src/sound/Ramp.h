#pragma once

namespace tendel {

// How many samples apart the sounds decide about slow movements.
inline constexpr int controlFrames = 32;

// A gain that follows a value known only every `controlFrames` samples, in straight lines.
struct Ramp {
    float value = 0;
    float step = 0;

    void aim(float target) { step = (target - value) / controlFrames; }
    float next() { return value += step; }
};

}  // namespace tendel

#pragma once

#include <cmath>
#include <numbers>

namespace tendel {

// sin(2π·turns) for a phase in [0, 1), within 4e-6: the Taylor series on the first quarter turn,
// mirrored. Without branches, so that loops over it can be vectorised.
inline float fastSine(float turns) {
    const float centred = turns - 0.5F;
    const float quarter = 0.25F - std::abs(std::abs(centred) - 0.25F);
    const float x = quarter * 2 * std::numbers::pi_v<float>;
    const float x2 = x * x;
    const float sine =
        x * (1 + x2 * (-1.F / 6 + x2 * (1.F / 120 + x2 * (-1.F / 5040 + x2 * (1.F / 362880)))));
    return std::copysign(sine, -centred);
}

}  // namespace tendel

#pragma once

#include <cstdint>

namespace tendel {

// Sums and products of counts that end the program, with a message, rather than wrap round: a
// number that is wrong would look like any other.
std::int64_t checkedSum(std::int64_t a, std::int64_t b);
std::int64_t checkedProduct(std::int64_t a, std::int64_t b);

}  // namespace tendel

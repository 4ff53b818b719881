#include "stats/Checked.h"

#include <cstdlib>

#include "base/Log.h"

namespace tendel {

namespace {
[[noreturn]] void endProgram() {
    log(LogLevel::error, "stats", "Couldn't count any further: a number is beyond 64 bits");
    std::abort();
}
}  // namespace

std::int64_t checkedSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (__builtin_add_overflow(a, b, &sum)) endProgram();
    return sum;
}

std::int64_t checkedProduct(std::int64_t a, std::int64_t b) {
    std::int64_t product = 0;
    if (__builtin_mul_overflow(a, b, &product)) endProgram();
    return product;
}

}  // namespace tendel

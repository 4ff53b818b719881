#pragma once

namespace tendel {

// While it lives, results of this thread's arithmetic that are too small to be heard become zero
// instead of subnormal numbers, which are some forty times slower: what decays gets there. Does
// nothing where the processor has no such mode.
class FlushDenormals {
public:
#ifdef __SSE__
    FlushDenormals() {
        __builtin_ia32_ldmxcsr(before_ | flushToZero | denormalsAreZero);
    }
    ~FlushDenormals() {
        __builtin_ia32_ldmxcsr(before_);
    }
#else
    FlushDenormals() {}
#endif
    FlushDenormals(const FlushDenormals&) = delete;
    FlushDenormals& operator=(const FlushDenormals&) = delete;

#ifdef __SSE__
private:
    static constexpr unsigned flushToZero = 0x8000;
    static constexpr unsigned denormalsAreZero = 0x0040;
    unsigned before_ = __builtin_ia32_stmxcsr();
#endif
};

}  // namespace tendel

#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <optional>

namespace tendel {

// A lock-free ring between two threads: one puts in, the other takes out. Holds up to `capacity`
// values; a power of two, so that the counters may wrap.
template <class T, std::size_t capacity>
class SingleProducerQueue {
    static_assert(capacity > 0 && (capacity & (capacity - 1)) == 0);

public:
    // False, and nothing put in, when it is full. The producing thread only.
    bool push(T value) {
        const std::size_t at = written_.load(std::memory_order_relaxed);
        if (at - read_.load(std::memory_order_acquire) == capacity) return false;
        values_[at % capacity] = value;
        written_.store(at + 1, std::memory_order_release);
        return true;
    }

    // The consuming thread only.
    std::optional<T> pop() {
        const std::size_t at = read_.load(std::memory_order_relaxed);
        if (at == written_.load(std::memory_order_acquire)) return std::nullopt;
        const T value = values_[at % capacity];
        read_.store(at + 1, std::memory_order_release);
        return value;
    }

private:
    // Each thread's counter on a cache line of its own.
    alignas(64) std::atomic<std::size_t> written_{0};
    alignas(64) std::atomic<std::size_t> read_{0};
    alignas(64) std::array<T, capacity> values_{};
};

}  // namespace tendel

#pragma once

#include <functional>
#include <utility>

#include "base/Signal.h"

namespace tendel {

// A value that its owner sets and others watch. Observers hear of a new value only when it differs
// from the old one. The owner hands out a const reference, so that nobody else can set it. Main
// thread only.
template <class T>
class Observable {
public:
    Observable() = default;
    explicit Observable(T value) : value_(std::move(value)) {}

    const T& get() const { return value_; }
    const T& operator*() const { return value_; }
    const T* operator->() const { return &value_; }

    void set(T value) {
        if (value == value_) return;
        value_ = std::move(value);
        changed_.emit();
    }

    // Calls `observer` after every change; it reads the new value itself.
    Subscription observe(std::function<void()> observer) const {
        return changed_.connect(std::move(observer));
    }

private:
    T value_{};
    mutable Signal<> changed_;
};

}  // namespace tendel

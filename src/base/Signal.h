#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace tendel {

// Keeps a listener connected; destroying it (or assigning over it) disconnects. It may outlive the
// signal.
class [[nodiscard]] Subscription {
public:
    Subscription() = default;
    explicit Subscription(std::function<void()> disconnect) : disconnect_(std::move(disconnect)) {}
    Subscription(Subscription&& other) noexcept
        : disconnect_(std::exchange(other.disconnect_, {})) {}
    Subscription& operator=(Subscription&& other) noexcept {
        if (this != &other) {
            reset();
            disconnect_ = std::exchange(other.disconnect_, {});
        }
        return *this;
    }
    ~Subscription() { reset(); }

    void reset() {
        if (auto disconnect = std::exchange(disconnect_, {})) disconnect();
    }

private:
    std::function<void()> disconnect_;
};

// Tells any number of listeners that something happened, in the order in which they connected.
//
//   Signal<int> changed;
//   Subscription keep = changed.connect([](int value) { … });
//   changed.emit(3);
//
// While it emits, listeners may be connected (not called this time), disconnected (not called any
// more), and the signal itself may be destroyed. Main thread only.
template <class... Args>
class Signal {
public:
    Signal() = default;
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    Subscription connect(std::function<void(Args...)> listener) {
        auto slot = std::make_shared<Slot>(Slot{std::move(listener)});
        slots_->push_back(slot);
        return Subscription([slots = std::weak_ptr(slots_), weak = std::weak_ptr(slot)] {
            const auto gone = weak.lock();
            if (!gone) return;
            gone->isConnected = false;
            if (const auto all = slots.lock()) std::erase(*all, gone);
        });
    }

    void emit(Args... args) const {
        const auto snapshot = *slots_;
        for (const auto& slot : snapshot)
            if (slot->isConnected) slot->listener(args...);
    }

    bool hasListeners() const { return !slots_->empty(); }

private:
    struct Slot {
        std::function<void(Args...)> listener;
        bool isConnected = true;
    };
    std::shared_ptr<std::vector<std::shared_ptr<Slot>>> slots_ =
        std::make_shared<std::vector<std::shared_ptr<Slot>>>();
};

}  // namespace tendel

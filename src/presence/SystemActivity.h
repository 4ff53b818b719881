#pragma once

#include <array>
#include <functional>
#include <optional>
#include <vector>

#include "base/Signal.h"

namespace tendel {

// What can make the computer as a whole unattended.
enum class SystemState { locked, screensaverRunning, screensAsleep, sessionInactive };
inline constexpr int systemStateCount = 4;

// One part of the system that tells of some of these states, by events. Main thread only.
class SystemActivitySource {
public:
    virtual ~SystemActivitySource() = default;
    // Nothing while this source cannot tell.
    virtual std::optional<bool> is(SystemState state) const = 0;
    Signal<> changed;  // an answer is another one
};

// Joins the sources and says when the computer goes away and comes back. A state holds when any
// source says so. Main thread only; the sources must outlive it.
class SystemActivity {
public:
    explicit SystemActivity(const std::vector<SystemActivitySource*>& sources);

    bool isLocked() const { return has(SystemState::locked); }
    bool isScreensaverRunning() const { return has(SystemState::screensaverRunning); }
    bool areScreensAsleep() const { return has(SystemState::screensAsleep); }
    bool isSessionInactive() const { return has(SystemState::sessionInactive); }
    bool isSystemAway() const;

    std::function<void()> onAway = [] {};
    std::function<void()> onReturn = [] {};

private:
    bool has(SystemState state) const { return states_[static_cast<std::size_t>(state)]; }
    void read();

    std::vector<SystemActivitySource*> sources_;
    std::array<bool, systemStateCount> states_{};
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

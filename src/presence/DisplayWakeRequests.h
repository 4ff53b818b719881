#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Signal.h"

namespace tendel {

// One wish of a program about the computer's rest (an assertion, an inhibitor).
struct WakeRequest {
    std::int32_t pid = 0;       // 0: not known
    std::string processName{};  // the program's short name or its application's identifier
    std::string type{};         // what it keeps from happening, in the platform's words

    friend bool operator==(const WakeRequest&, const WakeRequest&) = default;
};

// Which wishes say that somebody watches the display.
struct WakePolicy {
    std::set<std::string> displayTypes{};      // the types that keep the display awake
    std::set<std::string> ignoredProcesses{};  // tools that keep it awake whatever it shows
    std::set<std::string> ownNames{};          // our own, where the system does not tell our pid

    static WakePolicy macOS();
    static WakePolicy forLinux();
};

// The type of every request that keeps the display awake on Linux, whoever told of it.
inline constexpr auto idleInhibitor = "idle";

// One service that knows who keeps the display awake. Main thread only.
class WakeRequestSource {
public:
    virtual ~WakeRequestSource() = default;
    // The wishes that are in force; nothing while it cannot tell. Not const: one that is not told
    // of changes asks now, and does so within a tenth of a second or not at all.
    virtual std::optional<std::vector<WakeRequest>> requests() = 0;
    Signal<> changed;
};

// Who keeps the display awake now. Main thread only; the sources must outlive it.
class DisplayWakeRequests {
public:
    using Request = WakeRequest;

    DisplayWakeRequests(std::vector<WakeRequestSource*> sources, WakePolicy policy,
                        std::int32_t ownPid);

    // What all sources that can tell say together; nothing when none can.
    std::optional<std::vector<Request>> current() const;
    bool keepsDisplayAwake(const std::vector<Request>& requests) const;

    // Whether another program that counts asks for it.
    static bool keepsDisplayAwake(const std::vector<Request>& requests, std::int32_t ownPid,
                                  const WakePolicy& policy);

private:
    std::vector<WakeRequestSource*> sources_;
    WakePolicy policy_;
    std::int32_t ownPid_;
};

}  // namespace tendel

#pragma once

#include <cstdint>

#include "platform/linux/wayland/SwayTree.h"
#include "presence/DisplayWakeRequests.h"

namespace tendel {

// The windows on sway's outputs. A tiled window may fill an output without being full screen, so
// it counts as maximized. Main thread only.
class SwayWindows : public WindowSource {
public:
    // Windows of `ownPid` are left out.
    SwayWindows(SwayTree& tree, std::int32_t ownPid);

    std::optional<DesktopWindows> windows() override;

private:
    SwayTree& tree_;
    std::int32_t ownPid_;
    std::optional<DesktopWindows> told_;
    Subscription treeChanged_;  // last member: goes first
};

// The windows for which sway keeps the display awake. sway tells of no change to that: each
// question asks it. Main thread only.
class SwayInhibitors : public WakeRequestSource {
public:
    explicit SwayInhibitors(SwayTree& tree);

    std::optional<std::vector<WakeRequest>> requests() override;

private:
    std::optional<std::vector<WakeRequest>> known() const;

    SwayTree& tree_;
    std::optional<std::vector<WakeRequest>> told_;
    Subscription treeChanged_;  // last member: goes first
};

}  // namespace tendel

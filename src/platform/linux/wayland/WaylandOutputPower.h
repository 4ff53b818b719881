#pragma once

#include <memory>
#include <vector>

#include "platform/linux/wayland/WaylandConnection.h"
#include "presence/SystemActivity.h"

namespace tendel {

// Whether the compositor has switched off all outputs: by zwlr_output_power_manager_v1 (sway and
// the other wlroots compositors) or by org_kde_kwin_dpms_manager. Main thread only.
class WaylandOutputPower : public SystemActivitySource {
public:
    explicit WaylandOutputPower(WaylandConnection& connection);
    ~WaylandOutputPower() override;

    // Tells of `screensAsleep` alone.
    std::optional<bool> is(SystemState state) const override;

private:
    struct Output;
    struct Managers;

    void look();
    void add(WaylandConnection::GlobalName name);
    void update();
    std::optional<bool> areAllOff() const;

    WaylandConnection& connection_;
    std::unique_ptr<Managers> managers_;
    std::vector<std::unique_ptr<Output>> outputs_;
    std::optional<bool> areAsleep_;
    Subscription globalsChanged_;  // last member: goes first
};

}  // namespace tendel

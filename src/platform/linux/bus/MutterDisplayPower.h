#pragma once

#include "platform/linux/bus/BusService.h"
#include "presence/SystemActivity.h"

namespace tendel {

// Whether GNOME's display server has switched the screens off. Main thread only; the connection, to
// the session bus, must outlive it.
class MutterDisplayPower : public SystemActivitySource {
public:
    explicit MutterDisplayPower(BusConnection& session);

    std::optional<bool> is(SystemState state) const override;

private:
    void askAfresh();
    void set(std::optional<bool> areAsleep);

    BusService mutter_;
    std::optional<bool> areAsleep_;
    Subscription serviceChanged_;
};

}  // namespace tendel

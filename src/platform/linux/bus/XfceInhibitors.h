#pragma once

#include "platform/linux/bus/BusService.h"
#include "presence/DisplayWakeRequests.h"

namespace tendel {

// Who asked Xfce's power manager to keep the display awake. Main thread only; the connection, to
// the session bus, must outlive it.
class XfceInhibitors : public WakeRequestSource {
public:
    explicit XfceInhibitors(BusConnection& session);

    std::optional<std::vector<WakeRequest>> requests() override;

private:
    void askAfresh();

    BusService powerManager_;
    bool lists_ = true;  // another desktop's service of this name cannot
    Subscription serviceChanged_;
};

}  // namespace tendel

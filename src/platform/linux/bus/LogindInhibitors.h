#pragma once

#include "platform/linux/bus/BusService.h"
#include "presence/DisplayWakeRequests.h"

namespace tendel {

// Who asked the login service to keep the session from counting as idle. Main thread only; the
// connection, to the system bus, must outlive it.
class LogindInhibitors : public WakeRequestSource {
public:
    explicit LogindInhibitors(BusConnection& system);

    std::optional<std::vector<WakeRequest>> requests() override;

private:
    void askAfresh();

    BusService logind_;
    std::optional<bool> isAnyIdle_;
    Subscription serviceChanged_;
};

}  // namespace tendel

#pragma once

#include <set>
#include <utility>

#include "platform/linux/bus/BusService.h"
#include "presence/DisplayWakeRequests.h"

namespace tendel {

// Who asked KDE's power management to leave the screens as they are. Main thread only; the
// connection, to the session bus, must outlive it.
class KdeInhibitors : public WakeRequestSource {
public:
    using Inhibition = std::pair<QString, QString>;  // the program's name and its reason

    explicit KdeInhibitors(BusConnection& session);

    std::optional<std::vector<WakeRequest>> requests() override { return requests_; }

private:
    void askAfresh();
    void ask();
    void take(const std::optional<std::set<Inhibition>>& listed, bool isAnyForScreens);
    void set(std::optional<std::vector<WakeRequest>> requests);

    BusService policyAgent_;
    std::uint64_t asked_ = 0;      // how often; only the last question's answers count
    std::set<Inhibition> others_;  // those that do not concern the screens
    std::optional<std::vector<WakeRequest>> requests_;
    Subscription serviceChanged_;
};

}  // namespace tendel

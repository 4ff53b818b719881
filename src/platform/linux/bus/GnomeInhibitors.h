#pragma once

#include <map>

#include "platform/linux/bus/BusService.h"
#include "presence/DisplayWakeRequests.h"

namespace tendel {

// Who asked GNOME's session manager, or that of one of its relatives, to keep the session from
// counting as idle. Main thread only; the connection, to the session bus, must outlive it.
class GnomeInhibitors : public WakeRequestSource {
public:
    explicit GnomeInhibitors(BusConnection& session);

    std::optional<std::vector<WakeRequest>> requests() override;

private:
    struct Inhibitor {
        std::optional<bool> isForIdle;
        std::optional<std::string> appId;
        bool isInForce() const { return isForIdle.value_or(false) && appId; }
    };

    void askAfresh();
    void add(const QString& path);
    void remove(const QString& path);

    BusService sessionManager_;
    bool isListed_ = false;
    std::map<QString, Inhibitor> inhibitors_;  // by their objects' paths
    Subscription serviceChanged_;
};

}  // namespace tendel

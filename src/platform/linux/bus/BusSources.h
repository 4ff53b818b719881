#pragma once

#include "platform/linux/bus/GnomeInhibitors.h"
#include "platform/linux/bus/KdeInhibitors.h"
#include "platform/linux/bus/LogindActivity.h"
#include "platform/linux/bus/LogindInhibitors.h"
#include "platform/linux/bus/MutterDisplayPower.h"
#include "platform/linux/bus/MutterIdle.h"
#include "platform/linux/bus/ScreenSaverActivity.h"
#include "platform/linux/bus/XfceInhibitors.h"
#include "presence/UserPresence.h"

namespace tendel {

// All that the services on the buses of this login and of the computer tell of the user's presence.
// Which desktop runs is not asked: services that are not there leave their facts unknown. Main
// thread only.
class BusSources {
public:
    explicit BusSources(EventLoop& loop, const BusAddress& session = BusAddress::session(),
                        const BusAddress& system = BusAddress::system());

    // Everything but the idle time, which has an order among the idle sources.
    void addTo(PresenceSources& sources);
    IdleSource& mutterIdle() { return mutterIdle_; }

private:
    BusConnection session_;
    BusConnection system_;
    LogindActivity logindActivity_{system_};
    ScreenSaverActivity screenSavers_{session_};
    MutterDisplayPower mutterDisplayPower_{session_};
    MutterIdle mutterIdle_;
    GnomeInhibitors gnomeInhibitors_{session_};
    KdeInhibitors kdeInhibitors_{session_};
    XfceInhibitors xfceInhibitors_{session_};
    LogindInhibitors logindInhibitors_{system_};
};

}  // namespace tendel

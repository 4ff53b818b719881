#pragma once

#include "platform/linux/bus/BusService.h"
#include "presence/SystemActivity.h"

namespace tendel {

// What the login service tells: whether the session is locked or another one is in front of the
// user, and the computer going to sleep. Main thread only; the connection, to the system bus, must
// outlive it.
class LogindActivity : public SystemActivitySource {
public:
    // `sessionId` is the session that the environment names, if it does.
    explicit LogindActivity(BusConnection& system,
                            QString sessionId = qEnvironmentVariable("XDG_SESSION_ID"));

    std::optional<bool> is(SystemState state) const override;

private:
    void askAfresh();
    void findSessionById();
    void findSessionByProcess();
    void findSessionByUser();
    void useSession(const QString& path);
    void set(std::optional<bool>& fact, std::optional<bool> value);

    BusService logind_;
    QString sessionId_;
    std::optional<bool> isLocked_;
    std::optional<bool> isActive_;
    std::optional<bool> isPreparingForSleep_;
    Subscription serviceChanged_;
};

}  // namespace tendel

#pragma once

#include <memory>
#include <vector>

#include "platform/linux/bus/BusService.h"
#include "presence/SystemActivity.h"

namespace tendel {

// Whether a desktop's screen saver runs, whichever desktop it is. Main thread only; the connection,
// to the session bus, must outlive it.
class ScreenSaverActivity : public SystemActivitySource {
public:
    explicit ScreenSaverActivity(BusConnection& session);

    std::optional<bool> is(SystemState state) const override;

private:
    struct ScreenSaver {
        ScreenSaver(BusConnection& session, QString interfaceName_, QStringList paths_)
            : service(session, interfaceName_),
              interfaceName(std::move(interfaceName_)),
              paths(std::move(paths_)) {}

        BusService service;
        QString interfaceName;  // which is also the service's name
        QStringList paths;      // where the object may be
        std::optional<bool> isActive;
        Subscription serviceChanged;
    };

    void askAfresh(ScreenSaver& saver);
    void ask(ScreenSaver& saver, qsizetype path);
    void set(ScreenSaver& saver, std::optional<bool> isActive);

    std::vector<std::unique_ptr<ScreenSaver>> savers_;
};

}  // namespace tendel

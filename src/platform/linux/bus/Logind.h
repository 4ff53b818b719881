#pragma once

#include "platform/linux/bus/BusService.h"

// The names of the login service.
namespace tendel::logind {

inline QString name() {
    return QStringLiteral("org.freedesktop.login1");
}

inline BusObject manager() {
    return {QStringLiteral("/org/freedesktop/login1"),
            QStringLiteral("org.freedesktop.login1.Manager")};
}

}  // namespace tendel::logind

#pragma once

#include <string_view>

namespace tendel {

// Whether the user can be disturbed now.
enum class Presence {
    present,           // at the computer and free
    away,              // stepped away, locked, asleep, switched to another user
    busyCall,          // microphone or camera in use
    busyPresentation,  // a full-screen window that another program keeps awake
};

constexpr bool isBusy(Presence presence) {
    return presence == Presence::busyCall || presence == Presence::busyPresentation;
}

// For the log.
constexpr std::string_view name(Presence presence) {
    switch (presence) {
        case Presence::away:
            return "away";
        case Presence::busyCall:
            return "in a call";
        case Presence::busyPresentation:
            return "presenting";
        case Presence::present:
            break;
    }
    return "present";
}

}  // namespace tendel

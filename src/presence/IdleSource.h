#pragma once

#include <optional>

#include "base/Signal.h"

namespace tendel {

// How long the user has not touched keyboard, pointer or screen, as one part of the system tells
// it. Main thread only; asking never blocks for longer than one short answer of a local server.
class IdleSource {
public:
    virtual ~IdleSource() = default;

    // Seconds since the last input of any kind; nothing while this source cannot tell. One that is
    // told of crossings alone answers 0 until the watched threshold was reached.
    virtual std::optional<double> idleSeconds() = 0;

    // From now on `crossed` tells when the user has been idle for this many seconds, and then of
    // the first input after that. Replaces the threshold before; nothing ends the watch. It is
    // remembered while the system cannot be reached.
    virtual void watch(std::optional<double> thresholdSeconds) = 0;

    // Whether `crossed` can be relied on now, so that nobody has to ask again and again.
    virtual bool tellsCrossings() const = 0;

    Signal<> crossed;  // the threshold, in one direction or the other; or what it tells is lost
};

}  // namespace tendel

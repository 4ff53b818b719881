#pragma once

#include "platform/linux/x11/X11Connection.h"
#include "presence/SystemActivity.h"

namespace tendel {

// The X server's own screen saver (or the program that has registered as one with it), and the
// displays' power (DPMS), which is unknown without that extension. Of the power no event tells, but
// the server saves the screen as well when it switches the displays off, and the power is read
// then: displays that go off while the screen saver runs already do not count as asleep.
class X11ScreenSaver : public SystemActivitySource {
public:
    explicit X11ScreenSaver(X11Connection& connection);

    std::optional<bool> is(SystemState state) const override;

private:
    void handle(const X11Event& event);
    std::optional<bool> readPower();

    X11Connection& connection_;
    int saverEvent_ = 0;
    bool hasPower_ = false;
    std::optional<bool> isRunning_;
    std::optional<bool> isAsleep_;
    Subscription events_;
    Subscription lost_;  // last members: go first
};

}  // namespace tendel

#pragma once

#include <QTemporaryDir>

#include "platform/linux/LinuxEventLoop.h"
#include "support/RunningLoop.h"

namespace tendel {

// A message bus that can be killed and started anew at the same address.
class PrivateBus {
public:
    void start() {
        daemon.start("dbus-daemon",
                     {"--session", "--nofork", "--print-address=1", "--address=" + address()});
        addressWithIdentity = daemon.firstLine();
    }

    QString address() const { return "unix:path=" + folder_.path() + "/bus"; }

    test::Child daemon;
    QString addressWithIdentity;  // what the environment of a login would say

private:
    QTemporaryDir folder_;
};

// With a running bus.
class BusTest : public testing::Test {
protected:
    BusTest() { bus_.start(); }

    LinuxEventLoop loop_;
    PrivateBus bus_;
};

}  // namespace tendel

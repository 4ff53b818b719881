#pragma once

#include <functional>
#include <memory>

#include "base/Timer.h"
#include "platform/linux/FileDescriptor.h"
#include "platform/linux/bus/BusAddress.h"

class QSocketNotifier;

namespace tendel {

// Finds out whether a bus answers, so that nobody waits for one that is gone or hangs: connecting
// to a bus for good keeps the caller until it has answered.
class BusProbe {
public:
    explicit BusProbe(EventLoop& loop);
    ~BusProbe();

    // Calls `told` once, later. Asking again forgets the question before. What is not reached by a
    // socket of this computer is taken to answer.
    void ask(const BusAddress& address, std::function<void(bool answers)> told);

private:
    bool connect(const QByteArray& name);
    void finish(bool answers);

    std::function<void(bool)> told_;
    FileDescriptor socket_;
    std::unique_ptr<QSocketNotifier> notifier_;  // goes before the socket closes
    Timer patience_;
};

}  // namespace tendel

#pragma once

#include <functional>
#include <memory>

class QSocketNotifier;

namespace tendel {

// Tells, on the main thread, whenever a descriptor can be read or its other end is gone. May be
// destroyed while it tells; must be before the descriptor closes.
class ReadNotifier {
public:
    ReadNotifier(int descriptor, std::function<void()> onReadable);

private:
    struct Retire {
        void operator()(QSocketNotifier* notifier) const;
    };
    std::unique_ptr<QSocketNotifier, Retire> notifier_;
};

}  // namespace tendel

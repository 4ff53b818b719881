#include "platform/linux/TerminationSignals.h"

#include <sys/signalfd.h>
#include <unistd.h>

#include <csignal>
#include <utility>

#include "base/Log.h"

namespace tendel {

TerminationSignals::TerminationSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        sigaddset(&set, signal);
    descriptor_ = FileDescriptor(signalfd(-1, &set, SFD_NONBLOCK | SFD_CLOEXEC));
    if (descriptor_)
        pthread_sigmask(SIG_BLOCK, &set, nullptr);
    else
        log(LogLevel::warning, "app",
            "Couldn't watch for the signals to end; they end the program at once");
}

TerminationSignals::~TerminationSignals() = default;

void TerminationSignals::watch(std::function<void()> onTerminate) {
    if (!descriptor_) return;
    notifier_ = std::make_unique<QSocketNotifier>(descriptor_.value(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated,
                     [this, onTerminate = std::move(onTerminate)] {
                         signalfd_siginfo received{};
                         while (read(descriptor_.value(), &received, sizeof received) > 0) {
                         }
                         onTerminate();
                     });
}

}  // namespace tendel

#pragma once

#include <memory>
#include <vector>

#include "base/EventLoop.h"

struct pa_defer_event;
struct pa_io_event;
struct pa_mainloop_api;
struct pa_time_event;

namespace tendel {

// Lets libpulse run on the program's own event loop, so that it needs no thread. Main thread only;
// the contexts and streams made with it go before it.
class PulseMainLoop {
public:
    explicit PulseMainLoop(EventLoop& loop);
    ~PulseMainLoop();
    PulseMainLoop(const PulseMainLoop&) = delete;
    PulseMainLoop& operator=(const PulseMainLoop&) = delete;

    pa_mainloop_api* api() const { return api_.get(); }

private:
    struct Functions;

    EventLoop& loop_;
    std::unique_ptr<pa_mainloop_api> api_;
    std::vector<std::unique_ptr<pa_io_event>> ioEvents_;
    std::vector<std::unique_ptr<pa_time_event>> timeEvents_;
    std::vector<std::unique_ptr<pa_defer_event>> deferEvents_;
};

}  // namespace tendel

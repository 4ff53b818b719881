#include "platform/linux/pulse/PulseMainLoop.h"

#include <poll.h>
#include <pulse/mainloop-api.h>
#include <pulse/rtclock.h>

#include <QSocketNotifier>

#include <algorithm>
#include <optional>

#include "base/Timer.h"

using tendel::Duration;
using tendel::PulseMainLoop;
using tendel::Timer;

// libpulse names these types and leaves it to the main loop what they are.

struct pa_io_event {
    PulseMainLoop* owner;
    int descriptor;
    pa_io_event_cb_t callback;
    void* userData;
    pa_io_event_flags_t wanted = PA_IO_EVENT_NULL;
    pa_io_event_destroy_cb_t onDestroy = nullptr;
    std::unique_ptr<QSocketNotifier> readable{};
    std::unique_ptr<QSocketNotifier> writable{};

    void enable(pa_io_event_flags_t events);
    void enable(std::unique_ptr<QSocketNotifier>& notifier, QSocketNotifier::Type type, bool isOn);
    void dispatch();
};

struct pa_time_event {
    PulseMainLoop* owner;
    tendel::EventLoop& loop;
    pa_time_event_cb_t callback;
    void* userData;
    pa_time_event_destroy_cb_t onDestroy = nullptr;
    Timer timer{loop};

    void restart(const timeval* due);
};

struct pa_defer_event {
    PulseMainLoop* owner;
    tendel::EventLoop& loop;
    pa_defer_event_cb_t callback;
    void* userData;
    pa_defer_event_destroy_cb_t onDestroy = nullptr;
    Timer timer{loop};

    void runIn(Duration delay);
};

void pa_io_event::enable(pa_io_event_flags_t events) {
    wanted = events;
    enable(readable, QSocketNotifier::Read, events & PA_IO_EVENT_INPUT);
    enable(writable, QSocketNotifier::Write, events & PA_IO_EVENT_OUTPUT);
}

void pa_io_event::enable(std::unique_ptr<QSocketNotifier>& notifier, QSocketNotifier::Type type,
                         bool isOn) {
    if (!notifier && !isOn) return;
    if (!notifier) {
        notifier = std::make_unique<QSocketNotifier>(descriptor, type);
        QObject::connect(notifier.get(), &QSocketNotifier::activated, [this] { dispatch(); });
    }
    notifier->setEnabled(isOn);
}

// A notifier does not tell a hang-up from data, and what it saw may be done by the time it tells.
void pa_io_event::dispatch() {
    pollfd now{descriptor, 0, 0};
    if (wanted & PA_IO_EVENT_INPUT) now.events |= POLLIN;
    if (wanted & PA_IO_EVENT_OUTPUT) now.events |= POLLOUT;
    if (::poll(&now, 1, 0) <= 0) return;
    unsigned events = PA_IO_EVENT_NULL;
    if (now.revents & POLLIN) events |= PA_IO_EVENT_INPUT;
    if (now.revents & POLLOUT) events |= PA_IO_EVENT_OUTPUT;
    if (now.revents & POLLHUP) events |= PA_IO_EVENT_HANGUP;
    if (now.revents & (POLLERR | POLLNVAL)) events |= PA_IO_EVENT_ERROR;
    // The last thing to do here: it may free the event.
    callback(owner->api(), this, descriptor, static_cast<pa_io_event_flags_t>(events), userData);
}

// libpulse counts from 1970 or, where it marked the microseconds with this bit, on the clock of
// pa_rtclock_now().
static constexpr suseconds_t monotonicMark = 1 << 30;

void pa_time_event::restart(const timeval* due) {
    if (!due) {
        timer.stop();
        return;
    }
    const bool isMonotonic = due->tv_usec & monotonicMark;
    const auto at = std::chrono::seconds(due->tv_sec) + Duration(due->tv_usec & ~monotonicMark);
    const auto now = isMonotonic ? Duration(static_cast<Duration::rep>(pa_rtclock_now()))
                                 : loop.now().time_since_epoch();
    timer.start(at - now, [this, given = *due] { callback(owner->api(), this, &given, userData); });
}

// What stays enabled runs again and again, and libpulse counts on that; but it leaves nothing
// enabled that it needs at once, so the repetitions do not have to keep the processor busy.
static constexpr Duration repetition = std::chrono::milliseconds(20);

void pa_defer_event::runIn(Duration delay) {
    timer.start(delay, [this] {
        runIn(repetition);  // before the callback, which may disable or free the event
        callback(owner->api(), this, userData);
    });
}

namespace tendel {

struct PulseMainLoop::Functions {
    static PulseMainLoop& self(pa_mainloop_api* api) {
        return *static_cast<PulseMainLoop*>(api->userdata);
    }

    // Nothing may reach the event any more once its owner is told.
    template <class Event>
    static void free(std::vector<std::unique_ptr<Event>>& events, Event* event) {
        const auto at = std::find_if(events.begin(), events.end(),
                                     [&](const auto& held) { return held.get() == event; });
        const auto keep = std::move(*at);
        events.erase(at);
        if (keep->onDestroy) keep->onDestroy(keep->owner->api(), event, keep->userData);
    }

    template <class Event>
    static void freeAll(std::vector<std::unique_ptr<Event>>& events) {
        while (!events.empty())
            free(events, events.back().get());
    }

    template <class Event>
    static Event* add(std::vector<std::unique_ptr<Event>>& events, Event* made) {
        return events.emplace_back(made).get();
    }

    static pa_io_event* newIo(pa_mainloop_api* api, int descriptor, pa_io_event_flags_t events,
                              pa_io_event_cb_t callback, void* userData) {
        auto& owner = self(api);
        auto* event = add(owner.ioEvents_, new pa_io_event{&owner, descriptor, callback, userData});
        event->enable(events);
        return event;
    }

    static pa_time_event* newTime(pa_mainloop_api* api, const timeval* due,
                                  pa_time_event_cb_t callback, void* userData) {
        auto& owner = self(api);
        auto* event =
            add(owner.timeEvents_, new pa_time_event{&owner, owner.loop_, callback, userData});
        event->restart(due);
        return event;
    }

    static pa_defer_event* newDefer(pa_mainloop_api* api, pa_defer_event_cb_t callback,
                                    void* userData) {
        auto& owner = self(api);
        auto* event =
            add(owner.deferEvents_, new pa_defer_event{&owner, owner.loop_, callback, userData});
        event->runIn(Duration::zero());
        return event;
    }

    static void enableDefer(pa_defer_event* event, int isOn) {
        if (isOn)
            event->runIn(Duration::zero());
        else
            event->timer.stop();
    }
};

PulseMainLoop::PulseMainLoop(EventLoop& loop)
    : loop_(loop), api_(std::make_unique<pa_mainloop_api>()) {
    api_->userdata = this;
    api_->io_new = Functions::newIo;
    api_->io_enable = [](pa_io_event* e, pa_io_event_flags_t events) { e->enable(events); };
    api_->io_free = [](pa_io_event* e) { Functions::free(e->owner->ioEvents_, e); };
    api_->io_set_destroy = [](pa_io_event* e, pa_io_event_destroy_cb_t told) {
        e->onDestroy = told;
    };
    api_->time_new = Functions::newTime;
    api_->time_restart = [](pa_time_event* e, const timeval* due) { e->restart(due); };
    api_->time_free = [](pa_time_event* e) { Functions::free(e->owner->timeEvents_, e); };
    api_->time_set_destroy = [](pa_time_event* e, pa_time_event_destroy_cb_t told) {
        e->onDestroy = told;
    };
    api_->defer_new = Functions::newDefer;
    api_->defer_enable = Functions::enableDefer;
    api_->defer_free = [](pa_defer_event* e) { Functions::free(e->owner->deferEvents_, e); };
    api_->defer_set_destroy = [](pa_defer_event* e, pa_defer_event_destroy_cb_t told) {
        e->onDestroy = told;
    };
    api_->quit = [](pa_mainloop_api*, int) {};
}

PulseMainLoop::~PulseMainLoop() {
    Functions::freeAll(ioEvents_);
    Functions::freeAll(timeEvents_);
    Functions::freeAll(deferEvents_);
}

}  // namespace tendel

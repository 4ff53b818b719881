#pragma once

#include <QSocketNotifier>

#include <cstdint>
#include <cstdlib>
#include <deque>
#include <memory>

#include "base/Signal.h"
#include "base/Timer.h"

struct xcb_connection_t;

namespace tendel {

struct X11Free {
    void operator()(void* memory) const { std::free(memory); }
};

// An event as the server sent it, valid while it is told.
struct X11Event {
    int type = 0;
    const void* data = nullptr;

    template <class T>
    const T& as() const {
        return *static_cast<const T*>(data);
    }
};

// A connection of our own to the X server, for what it tells of the user rather than of our
// windows. When the server goes it stays closed: the toolkit's connection went with it, and mostly
// the program. Main thread only; must not be destroyed while it tells.
class X11Connection {
public:
    // To the display that $DISPLAY names.
    explicit X11Connection(EventLoop& loop);
    ~X11Connection();
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;

    bool isOpen() const;
    // Asked for only while it is open.
    xcb_connection_t* native() const { return native_; }
    std::uint32_t root() const { return root_; }

    // Waits for the answer to a request; null when it is an error or the server is gone. All
    // waiting goes through here, since events that arrive with an answer make nothing readable
    // any more and have to be told of all the same.
    template <class Reply, class Cookie, class Error>
    std::unique_ptr<Reply, X11Free> reply(Reply* (*wait)(xcb_connection_t*, Cookie, Error**),
                                          Cookie cookie) {
        Error* error = nullptr;
        std::unique_ptr<Reply, X11Free> answer(wait(native_, cookie, &error));
        std::free(error);
        keepQueuedEvents();
        return answer;
    }
    // Sends what has no answer to wait for.
    void flush();

    Signal<const X11Event&> event;
    Signal<> lost;  // the server is gone

private:
    using Event = std::unique_ptr<void, X11Free>;

    void keepQueuedEvents();
    Event takeEvent();
    void dispatch();
    void close();

    xcb_connection_t* native_ = nullptr;
    std::uint32_t root_ = 0;
    std::deque<Event> queued_;
    bool isDispatching_ = false;
    std::unique_ptr<QSocketNotifier> notifier_;
    Timer dispatchSoon_;
};

}  // namespace tendel

#include "platform/linux/x11/X11Connection.h"

#include <xcb/xcb.h>

#include <utility>

#include "base/Log.h"

namespace tendel {

X11Connection::X11Connection(EventLoop& loop) : dispatchSoon_(loop) {
    int screenNumber = 0;
    native_ = xcb_connect(nullptr, &screenNumber);
    if (!isOpen()) {
        xcb_disconnect(std::exchange(native_, nullptr));
        return;
    }
    auto screen = xcb_setup_roots_iterator(xcb_get_setup(native_));
    while (screenNumber-- > 0 && screen.rem > 1)
        xcb_screen_next(&screen);
    root_ = screen.data->root;

    notifier_ =
        std::make_unique<QSocketNotifier>(xcb_get_file_descriptor(native_), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated, notifier_.get(),
                     [this] { dispatch(); });
}

X11Connection::~X11Connection() {
    notifier_.reset();
    if (native_) xcb_disconnect(native_);
}

bool X11Connection::isOpen() const {
    return native_ && xcb_connection_has_error(native_) == 0;
}

void X11Connection::flush() {
    xcb_flush(native_);
    keepQueuedEvents();  // it may have had to read in order to write
}

void X11Connection::keepQueuedEvents() {
    while (auto* next = xcb_poll_for_queued_event(native_))
        queued_.emplace_back(next);
    if ((!queued_.empty() || !isOpen()) && !isDispatching_ && !dispatchSoon_.isRunning())
        dispatchSoon_.start(Duration::zero(), [this] { dispatch(); });
}

X11Connection::Event X11Connection::takeEvent() {
    if (queued_.empty()) return Event(xcb_poll_for_event(native_));
    Event first = std::move(queued_.front());
    queued_.pop_front();
    return first;
}

void X11Connection::dispatch() {
    if (!native_) return;
    isDispatching_ = true;
    while (const Event next = takeEvent()) {
        constexpr int sentByClient = 0x80;
        constexpr int error = 0;  // of a request about a window that is gone
        const int type = static_cast<xcb_generic_event_t*>(next.get())->response_type;
        if (type != error) event.emit({type & ~sentByClient, next.get()});
    }
    isDispatching_ = false;
    if (!isOpen()) close();
}

void X11Connection::close() {
    log(LogLevel::warning, "x11", "the X server is gone");
    // The notifier may be what calls, so it goes later; its descriptor must not be watched again.
    notifier_->setEnabled(false);
    notifier_.release()->deleteLater();
    xcb_disconnect(std::exchange(native_, nullptr));
    lost.emit();
}

}  // namespace tendel

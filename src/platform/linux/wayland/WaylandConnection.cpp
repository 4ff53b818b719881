#include "platform/linux/wayland/WaylandConnection.h"

#include <wayland-client.h>

#include <algorithm>
#include <utility>

#include "base/Log.h"

namespace tendel {

void WaylandConnection::Disconnect::operator()(wl_display* display) const {
    wl_display_disconnect(display);
}

void WaylandConnection::Disconnect::operator()(wl_registry* registry) const {
    wl_registry_destroy(registry);
}

WaylandConnection::WaylandConnection(EventLoop& loop, std::string display)
    : name_(std::move(display)), retry_(loop) {
    if (!name_.empty()) connect();
}

WaylandConnection::~WaylandConnection() = default;

void WaylandConnection::connect() {
    static constexpr wl_registry_listener listener{
        .global = &WaylandConnection::addGlobal, .global_remove = &WaylandConnection::removeGlobal};
    display_.reset(wl_display_connect(name_.c_str()));
    if (!display_) {
        retry_.start(backoff_.next(), [this] { connect(); });
        return;
    }
    registry_.reset(wl_display_get_registry(display_.get()));
    wl_registry_add_listener(registry_.get(), &listener, this);
    notifier_.emplace(wl_display_get_fd(display_.get()), [this] { read(); });
    flush();
}

std::optional<WaylandConnection::GlobalName> WaylandConnection::find(
    std::string_view interface) const {
    const auto found = std::ranges::find(globals_, interface, &Global::interface);
    if (found == globals_.end()) return std::nullopt;
    return found->name;
}

void* WaylandConnection::bindProxy(GlobalName name, const wl_interface& interface) {
    return wl_registry_bind(registry_.get(), name, &interface, 1);
}

// A failure, or more than the socket takes, needs no answer here: the one makes the descriptor
// readable, and what is left goes out with the next message.
void WaylandConnection::flush() {
    if (display_) wl_display_flush(display_.get());
}

void WaylandConnection::read() {
    if (!dispatch()) return lose();
    flush();
    if (std::exchange(globalsChanged_, false)) changed.emit();
}

bool WaylandConnection::dispatch() {
    wl_display* display = display_.get();
    while (wl_display_prepare_read(display) != 0)
        if (wl_display_dispatch_pending(display) < 0) return false;
    return wl_display_read_events(display) >= 0 && wl_display_dispatch_pending(display) >= 0;
}

void WaylandConnection::lose() {
    log(LogLevel::info, "presence", "The Wayland compositor is gone; looking for it again");
    notifier_.reset();
    globals_.clear();
    globalsChanged_ = false;
    changed.emit();  // what hangs on the display goes before it
    registry_.reset();
    display_.reset();
    retry_.start(backoff_.next(), [this] { connect(); });
}

void WaylandConnection::addGlobal(void* self, wl_registry*, GlobalName name, const char* interface,
                                  std::uint32_t) {
    auto& connection = *static_cast<WaylandConnection*>(self);
    connection.globals_.push_back({.name = name, .interface = interface});
    connection.globalsChanged_ = true;
    connection.backoff_.reset();  // one that accepts and hangs up at once does not count as there
}

void WaylandConnection::removeGlobal(void* self, wl_registry*, GlobalName name) {
    auto& connection = *static_cast<WaylandConnection*>(self);
    std::erase_if(connection.globals_, [&](const Global& global) { return global.name == name; });
    connection.globalsChanged_ = true;
}

}  // namespace tendel

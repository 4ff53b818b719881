#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/Backoff.h"
#include "base/Timer.h"
#include "platform/linux/wayland/ReadNotifier.h"

struct wl_display;
struct wl_interface;
struct wl_registry;

namespace tendel {

// A connection of its own to the Wayland compositor, for what only that can tell; the windows are
// shown through the X server. When the compositor goes away, it is looked for again with growing
// delays. Main thread only; never waits for an answer.
class WaylandConnection {
public:
    using GlobalName = std::uint32_t;
    struct Global {
        GlobalName name = 0;
        std::string interface;
    };

    // `display` as WAYLAND_DISPLAY has it; empty: there is no compositor, and none is looked for.
    WaylandConnection(EventLoop& loop, std::string display);
    ~WaylandConnection();
    WaylandConnection(const WaylandConnection&) = delete;
    WaylandConnection& operator=(const WaylandConnection&) = delete;

    // What the compositor offers, in its order; empty while there is none.
    const std::vector<Global>& globals() const { return globals_; }
    // The first of an interface.
    std::optional<GlobalName> find(std::string_view interface) const;
    // A proxy for a global in the first version of its interface, which is the caller's to destroy.
    template <class Proxy>
    Proxy* bind(GlobalName name, const wl_interface& interface) {
        return static_cast<Proxy*>(bindProxy(name, interface));
    }
    // Sends what was asked.
    void flush();

    // The globals are others. What was bound of one that is gone is to be destroyed now.
    Signal<> changed;

private:
    struct Disconnect {
        void operator()(wl_display* display) const;
        void operator()(wl_registry* registry) const;
    };

    void connect();
    void* bindProxy(GlobalName name, const wl_interface& interface);
    void read();
    bool dispatch();
    void lose();
    static void addGlobal(void* self, wl_registry*, GlobalName name, const char* interface,
                          std::uint32_t version);
    static void removeGlobal(void* self, wl_registry*, GlobalName name);

    std::string name_;
    Backoff backoff_;
    Timer retry_;
    std::unique_ptr<wl_display, Disconnect> display_;
    std::unique_ptr<wl_registry, Disconnect> registry_;
    std::vector<Global> globals_;
    bool globalsChanged_ = false;
    std::optional<ReadNotifier> notifier_;  // after the display: goes before its descriptor closes
};

}  // namespace tendel

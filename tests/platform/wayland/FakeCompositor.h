#pragma once

#include <QSocketNotifier>
#include <QTemporaryDir>

#include <cstdint>
#include <list>
#include <map>
#include <memory>
#include <string>

struct wl_client;
struct wl_display;
struct wl_global;
struct wl_interface;
struct wl_resource;

namespace tendel {

// What no compositor of the distribution shows without a screen: a seat and outputs that come and
// go, ext_idle_notifier_v1, and outputs that are switched off. Runs in this program's event loop.
class FakeCompositor {
public:
    enum class PowerProtocol { wlroots, kde };

    FakeCompositor();
    ~FakeCompositor();

    std::string display() const;

    wl_global* offerSeat();
    wl_global* offerOutput();
    void offerIdleNotifier();
    void offerOutputPower(PowerProtocol protocol);
    void withdraw(wl_global* global);

    void tellIdle(bool isIdle);
    void tellPower(wl_global* output, bool isOn);

    // What clients asked for.
    std::map<wl_resource*, std::uint32_t> idleTimeouts;  // in milliseconds
    std::map<wl_resource*, wl_global*> outputPowers;

private:
    struct Requests;  // answers the clients
    struct DestroyDisplay {
        void operator()(wl_display* display) const;
    };

    void handleRequests();

    PowerProtocol powerProtocol_ = PowerProtocol::wlroots;
    QTemporaryDir folder_;
    std::list<wl_global*> outputs_;  // each at a place of its own
    std::unique_ptr<wl_display, DestroyDisplay> display_;
    QSocketNotifier requests_;
};

}  // namespace tendel

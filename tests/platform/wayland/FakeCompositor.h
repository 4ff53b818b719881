#pragma once

#include <dpms-server-protocol.h>
#include <ext-idle-notify-v1-server-protocol.h>
#include <wayland-server.h>
#include <wlr-output-power-server-protocol.h>

#include <QSocketNotifier>
#include <QTemporaryDir>

#include <list>
#include <map>
#include <string>

namespace tendel {

// What no compositor of the distribution shows without a screen: a seat and outputs that come and
// go, ext_idle_notifier_v1, and outputs that are switched off. Runs in this program's event loop.
class FakeCompositor {
public:
    enum class PowerProtocol { wlroots, kde };

    FakeCompositor() {
        wl_display_add_socket(display_, display().c_str());
        QObject::connect(&requests_, &QSocketNotifier::activated, [this] {
            wl_event_loop_dispatch(wl_display_get_event_loop(display_), 0);
            flush();
        });
    }
    ~FakeCompositor() {
        wl_display_destroy_clients(display_);
        wl_display_destroy(display_);
    }

    std::string display() const { return folder_.filePath("wayland").toStdString(); }

    wl_global* offerSeat() {
        return offer(wl_seat_interface, nullptr, [](auto* client, void*, auto, auto id) {
            wl_resource_create(client, &wl_seat_interface, 1, id);
        });
    }
    // An output knows its own global, which is there only once it can be bound.
    wl_global* offerOutput() {
        wl_global*& output = outputs_.emplace_back();
        const auto bind = [](auto* client, void* global, auto, auto id) {
            wl_resource_set_user_data(wl_resource_create(client, &wl_output_interface, 1, id),
                                      *static_cast<wl_global**>(global));
        };
        return output = offer(wl_output_interface, &output, bind);
    }
    void offerIdleNotifier() {
        offer(ext_idle_notifier_v1_interface, this, [](auto* client, void* self, auto, auto id) {
            static constexpr struct ext_idle_notifier_v1_interface requests {
                .destroy = destroy, .get_idle_notification = getIdleNotification
            };
            make(client, ext_idle_notifier_v1_interface, id, requests, self);
        });
    }
    void offerOutputPower(PowerProtocol protocol) {
        powerProtocol_ = protocol;
        if (protocol == PowerProtocol::wlroots)
            offer(zwlr_output_power_manager_v1_interface, this,
                  [](auto* client, void* self, auto, auto id) {
                      static constexpr struct zwlr_output_power_manager_v1_interface requests {
                          .get_output_power = getOutputPower, .destroy = destroy
                      };
                      make(client, zwlr_output_power_manager_v1_interface, id, requests, self);
                  });
        else
            offer(org_kde_kwin_dpms_manager_interface, this,
                  [](auto* client, void* self, auto, auto id) {
                      static constexpr struct org_kde_kwin_dpms_manager_interface requests {
                          .get = getOutputPower
                      };
                      make(client, org_kde_kwin_dpms_manager_interface, id, requests, self);
                  });
    }
    void withdraw(wl_global* global) {
        wl_global_remove(global);
        flush();
    }

    void tellIdle(bool isIdle) {
        for (const auto& [watch, timeout] : idleTimeouts)
            isIdle ? ext_idle_notification_v1_send_idled(watch)
                   : ext_idle_notification_v1_send_resumed(watch);
        flush();
    }
    void tellPower(wl_global* output, bool isOn) {
        for (const auto& [power, of] : outputPowers)
            if (of != output)
                continue;
            else if (powerProtocol_ == PowerProtocol::wlroots)
                zwlr_output_power_v1_send_mode(power, isOn);
            else
                org_kde_kwin_dpms_send_mode(
                    power, isOn ? ORG_KDE_KWIN_DPMS_MODE_ON : ORG_KDE_KWIN_DPMS_MODE_OFF);
        flush();
    }

    // What clients asked for.
    std::map<wl_resource*, std::uint32_t> idleTimeouts;  // in milliseconds
    std::map<wl_resource*, wl_global*> outputPowers;

private:
    wl_global* offer(const wl_interface& interface, void* data, wl_global_bind_func_t bind) {
        return wl_global_create(display_, &interface, 1, data, bind);
    }
    void flush() { wl_display_flush_clients(display_); }

    static FakeCompositor& of(wl_resource* resource) {
        return *static_cast<FakeCompositor*>(wl_resource_get_user_data(resource));
    }
    template <class Implementation>
    static wl_resource* make(wl_client* client, const wl_interface& interface, std::uint32_t id,
                             const Implementation& implementation, void* self) {
        const auto forget = [](wl_resource* gone) {
            of(gone).idleTimeouts.erase(gone);
            of(gone).outputPowers.erase(gone);
        };
        wl_resource* made = wl_resource_create(client, &interface, 1, id);
        wl_resource_set_implementation(made, &implementation, self, forget);
        return made;
    }
    static void destroy(wl_client*, wl_resource* resource) { wl_resource_destroy(resource); }
    static void ignore(wl_client*, wl_resource*, std::uint32_t) {}

    static void getIdleNotification(wl_client* client, wl_resource* notifier, std::uint32_t id,
                                    std::uint32_t timeout, wl_resource*) {
        static constexpr struct ext_idle_notification_v1_interface requests { .destroy = destroy };
        of(notifier).idleTimeouts[make(client, ext_idle_notification_v1_interface, id, requests,
                                       &of(notifier))] = timeout;
    }
    static void getOutputPower(wl_client* client, wl_resource* manager, std::uint32_t id,
                               wl_resource* output) {
        static constexpr struct zwlr_output_power_v1_interface requests {
            .set_mode = ignore, .destroy = destroy
        };
        static constexpr struct org_kde_kwin_dpms_interface kdeRequests {
            .set = ignore, .release = destroy
        };
        FakeCompositor& self = of(manager);
        wl_resource* power =
            self.powerProtocol_ == PowerProtocol::wlroots
                ? make(client, zwlr_output_power_v1_interface, id, requests, &self)
                : make(client, org_kde_kwin_dpms_interface, id, kdeRequests, &self);
        self.outputPowers[power] = static_cast<wl_global*>(wl_resource_get_user_data(output));
    }

    PowerProtocol powerProtocol_ = PowerProtocol::wlroots;
    QTemporaryDir folder_;
    std::list<wl_global*> outputs_;  // each at a place of its own
    wl_display* display_ = wl_display_create();
    QSocketNotifier requests_{wl_event_loop_get_fd(wl_display_get_event_loop(display_)),
                              QSocketNotifier::Read};
};

}  // namespace tendel

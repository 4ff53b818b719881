#include "FakeCompositor.h"

#include <dpms-server-protocol.h>
#include <ext-idle-notify-v1-server-protocol.h>
#include <wayland-server.h>
#include <wlr-output-power-server-protocol.h>

namespace tendel {

struct FakeCompositor::Requests {
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

    static void bindIdleNotifier(wl_client* client, void* self, std::uint32_t, std::uint32_t id) {
        static constexpr struct ext_idle_notifier_v1_interface requests {
            .destroy = destroy, .get_idle_notification = getIdleNotification
        };
        make(client, ext_idle_notifier_v1_interface, id, requests, self);
    }

    static void bindOutputPower(wl_client* client, void* self, std::uint32_t, std::uint32_t id) {
        static constexpr struct zwlr_output_power_manager_v1_interface requests {
            .get_output_power = getOutputPower, .destroy = destroy
        };
        make(client, zwlr_output_power_manager_v1_interface, id, requests, self);
    }

    static void bindKdeOutputPower(wl_client* client, void* self, std::uint32_t, std::uint32_t id) {
        static constexpr struct org_kde_kwin_dpms_manager_interface requests {
            .get = getOutputPower
        };
        make(client, org_kde_kwin_dpms_manager_interface, id, requests, self);
    }

    static void bindSeat(wl_client* client, void*, std::uint32_t, std::uint32_t id) {
        wl_resource_create(client, &wl_seat_interface, 1, id);
    }

    // An output knows its own global, which is there only once this can be called.
    static void bindOutput(wl_client* client, void* global, std::uint32_t, std::uint32_t id) {
        wl_resource_set_user_data(wl_resource_create(client, &wl_output_interface, 1, id),
                                  *static_cast<wl_global**>(global));
    }
};

void FakeCompositor::DestroyDisplay::operator()(wl_display* display) const {
    wl_display_destroy_clients(display);
    wl_display_destroy(display);
}

FakeCompositor::FakeCompositor()
    : display_(wl_display_create()),
      requests_(wl_event_loop_get_fd(wl_display_get_event_loop(display_.get())),
                QSocketNotifier::Read) {
    wl_display_add_socket(display_.get(), display().c_str());
    QObject::connect(&requests_, &QSocketNotifier::activated, [this] { handleRequests(); });
}

FakeCompositor::~FakeCompositor() = default;

std::string FakeCompositor::display() const {
    return folder_.filePath("wayland").toStdString();
}

wl_global* FakeCompositor::offerSeat() {
    return wl_global_create(display_.get(), &wl_seat_interface, 1, nullptr, Requests::bindSeat);
}

wl_global* FakeCompositor::offerOutput() {
    wl_global*& output = outputs_.emplace_back();
    output =
        wl_global_create(display_.get(), &wl_output_interface, 1, &output, Requests::bindOutput);
    return output;
}

void FakeCompositor::offerIdleNotifier() {
    wl_global_create(display_.get(), &ext_idle_notifier_v1_interface, 1, this,
                     Requests::bindIdleNotifier);
}

void FakeCompositor::offerOutputPower(PowerProtocol protocol) {
    powerProtocol_ = protocol;
    if (protocol == PowerProtocol::wlroots)
        wl_global_create(display_.get(), &zwlr_output_power_manager_v1_interface, 1, this,
                         Requests::bindOutputPower);
    else
        wl_global_create(display_.get(), &org_kde_kwin_dpms_manager_interface, 1, this,
                         Requests::bindKdeOutputPower);
}

void FakeCompositor::withdraw(wl_global* global) {
    wl_global_remove(global);
    wl_display_flush_clients(display_.get());
}

void FakeCompositor::tellIdle(bool isIdle) {
    for (const auto& [watch, timeout] : idleTimeouts)
        isIdle ? ext_idle_notification_v1_send_idled(watch)
               : ext_idle_notification_v1_send_resumed(watch);
    wl_display_flush_clients(display_.get());
}

void FakeCompositor::tellPower(wl_global* output, bool isOn) {
    for (const auto& [power, of] : outputPowers)
        if (of != output)
            continue;
        else if (powerProtocol_ == PowerProtocol::wlroots)
            zwlr_output_power_v1_send_mode(power, isOn);
        else
            org_kde_kwin_dpms_send_mode(
                power, isOn ? ORG_KDE_KWIN_DPMS_MODE_ON : ORG_KDE_KWIN_DPMS_MODE_OFF);
    wl_display_flush_clients(display_.get());
}

void FakeCompositor::handleRequests() {
    wl_event_loop_dispatch(wl_display_get_event_loop(display_.get()), 0);
    wl_display_flush_clients(display_.get());
}

}  // namespace tendel

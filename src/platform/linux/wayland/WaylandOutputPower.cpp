#include "platform/linux/wayland/WaylandOutputPower.h"

#include <dpms-client-protocol.h>
#include <wayland-client.h>
#include <wlr-output-power-client-protocol.h>

#include <algorithm>
#include <utility>

#include "platform/linux/wayland/WaylandProxy.h"

namespace tendel {

struct WaylandOutputPower::Managers {
    WaylandProxy<zwlr_output_power_manager_v1, zwlr_output_power_manager_v1_destroy> wlroots;
    WaylandProxy<org_kde_kwin_dpms_manager, org_kde_kwin_dpms_manager_destroy> kde;
};

struct WaylandOutputPower::Output {
    WaylandOutputPower& owner;
    WaylandConnection::GlobalName name = 0;
    WaylandProxy<wl_output, wl_output_destroy> output{};
    WaylandProxy<zwlr_output_power_v1, zwlr_output_power_v1_destroy> wlroots{};
    WaylandProxy<org_kde_kwin_dpms, org_kde_kwin_dpms_release> kde{};
    std::optional<bool> isOn{};

    void tell(std::optional<bool> on) {
        isOn = on;
        owner.update();
    }
};

WaylandOutputPower::WaylandOutputPower(WaylandConnection& connection)
    : connection_(connection),
      managers_(std::make_unique<Managers>()),
      globalsChanged_(connection.changed.connect([this] { look(); })) {
    look();
}

WaylandOutputPower::~WaylandOutputPower() = default;

std::optional<bool> WaylandOutputPower::is(SystemState state) const {
    if (state != SystemState::screensAsleep) return std::nullopt;
    return areAsleep_;
}

void WaylandOutputPower::look() {
    const auto wlroots = connection_.find(zwlr_output_power_manager_v1_interface.name);
    const auto kde = connection_.find(org_kde_kwin_dpms_manager_interface.name);
    const auto isOffered = [&](const std::unique_ptr<Output>& output) {
        return std::ranges::find(connection_.globals(), output->name,
                                 &WaylandConnection::Global::name) != connection_.globals().end();
    };
    std::erase_if(outputs_, [&](const auto& output) { return !isOffered(output); });
    if (!wlroots && !kde) {
        outputs_.clear();
        *managers_ = {};
        return update();
    }

    if (!managers_->wlroots && !managers_->kde) {
        if (wlroots)
            managers_->wlroots.reset(connection_.bind<zwlr_output_power_manager_v1>(
                *wlroots, zwlr_output_power_manager_v1_interface));
        else
            managers_->kde.reset(connection_.bind<org_kde_kwin_dpms_manager>(
                *kde, org_kde_kwin_dpms_manager_interface));
    }
    for (const auto& global : connection_.globals())
        if (global.interface == wl_output_interface.name &&
            std::ranges::find(outputs_, global.name, &Output::name) == outputs_.end())
            add(global.name);
    connection_.flush();
    update();
}

void WaylandOutputPower::add(WaylandConnection::GlobalName name) {
    static constexpr zwlr_output_power_v1_listener wlrootsListener{
        .mode =
            [](void* output, zwlr_output_power_v1*, std::uint32_t mode) {
                static_cast<Output*>(output)->tell(mode == ZWLR_OUTPUT_POWER_V1_MODE_ON);
            },
        .failed = [](void* output,
                     zwlr_output_power_v1*) { static_cast<Output*>(output)->tell(std::nullopt); }};
    static constexpr org_kde_kwin_dpms_listener kdeListener{
        .supported = [](void*, org_kde_kwin_dpms*, std::uint32_t) {},
        .mode =
            [](void* output, org_kde_kwin_dpms*, std::uint32_t mode) {
                static_cast<Output*>(output)->tell(mode == ORG_KDE_KWIN_DPMS_MODE_ON);
            },
        .done = [](void*, org_kde_kwin_dpms*) {}};

    auto& output = *outputs_.emplace_back(std::make_unique<Output>(Output{*this, name}));
    output.output.reset(connection_.bind<wl_output>(name, wl_output_interface));
    if (managers_->wlroots) {
        output.wlroots.reset(zwlr_output_power_manager_v1_get_output_power(managers_->wlroots.get(),
                                                                           output.output.get()));
        zwlr_output_power_v1_add_listener(output.wlroots.get(), &wlrootsListener, &output);
    } else {
        output.kde.reset(org_kde_kwin_dpms_manager_get(managers_->kde.get(), output.output.get()));
        org_kde_kwin_dpms_add_listener(output.kde.get(), &kdeListener, &output);
    }
}

void WaylandOutputPower::update() {
    const auto before = std::exchange(areAsleep_, areAllOff());
    if (areAsleep_ != before) changed.emit();
}

// One that is on decides; without it, one that has not been told of yet leaves it open.
std::optional<bool> WaylandOutputPower::areAllOff() const {
    const auto isAny = [&](std::optional<bool> on) {
        return std::ranges::find(outputs_, on, &Output::isOn) != outputs_.end();
    };
    if (isAny(true)) return false;
    if (outputs_.empty() || isAny(std::nullopt)) return std::nullopt;
    return true;
}

}  // namespace tendel

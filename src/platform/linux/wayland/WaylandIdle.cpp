#include "platform/linux/wayland/WaylandIdle.h"

#include <ext-idle-notify-v1-client-protocol.h>
#include <idle-client-protocol.h>
#include <wayland-client.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "platform/linux/wayland/WaylandProxy.h"

namespace tendel {

namespace {

std::uint32_t toMilliseconds(double seconds) {
    constexpr double longest = 0x7fffffff;  // compositors keep it in a signed number
    return static_cast<std::uint32_t>(std::clamp(std::round(seconds * 1000), 1.0, longest));
}

}  // namespace

struct WaylandIdle::Proxies {
    WaylandProxy<wl_seat, wl_seat_destroy> seat;
    WaylandProxy<ext_idle_notifier_v1, ext_idle_notifier_v1_destroy> notifier;
    WaylandProxy<org_kde_kwin_idle, org_kde_kwin_idle_destroy> kdeNotifier;
    WaylandProxy<ext_idle_notification_v1, ext_idle_notification_v1_destroy> notification;
    WaylandProxy<org_kde_kwin_idle_timeout, org_kde_kwin_idle_timeout_release> kdeNotification;
};

WaylandIdle::WaylandIdle(WaylandConnection& connection, EventLoop& loop)
    : connection_(connection),
      loop_(loop),
      proxies_(std::make_unique<Proxies>()),
      globalsChanged_(connection.changed.connect([this] { look(); })) {
    look();
}

WaylandIdle::~WaylandIdle() = default;

std::optional<double> WaylandIdle::idleSeconds() {
    if (!tellsCrossings()) return std::nullopt;
    if (!crossedAt_) return 0;
    return *threshold_ + toSeconds(loop_.monotonicNow() - *crossedAt_);
}

void WaylandIdle::watch(std::optional<double> thresholdSeconds) {
    if (thresholdSeconds == threshold_) return;  // a new watch would count from now on
    threshold_ = thresholdSeconds;
    renew();
    connection_.flush();
}

bool WaylandIdle::tellsCrossings() const {
    return proxies_->seat && (proxies_->notifier || proxies_->kdeNotifier);
}

void WaylandIdle::look() {
    Offer offer{.seat = connection_.find(wl_seat_interface.name),
                .notifier = connection_.find(ext_idle_notifier_v1_interface.name),
                .kdeNotifier = connection_.find(org_kde_kwin_idle_interface.name)};
    if (offer == offer_) return;
    offer_ = offer;

    *proxies_ = {};
    if (offer.seat) proxies_->seat.reset(connection_.bind<wl_seat>(*offer.seat, wl_seat_interface));
    if (offer.notifier)
        proxies_->notifier.reset(connection_.bind<ext_idle_notifier_v1>(
            *offer.notifier, ext_idle_notifier_v1_interface));
    else if (offer.kdeNotifier)
        proxies_->kdeNotifier.reset(
            connection_.bind<org_kde_kwin_idle>(*offer.kdeNotifier, org_kde_kwin_idle_interface));
    renew();
    connection_.flush();
    crossed.emit();
}

void WaylandIdle::renew() {
    proxies_->notification.reset();
    proxies_->kdeNotification.reset();
    crossedAt_.reset();
    if (!threshold_ || !tellsCrossings()) return;

    const std::uint32_t timeout = toMilliseconds(*threshold_);
    wl_seat* seat = proxies_->seat.get();
    if (proxies_->notifier) {
        static constexpr ext_idle_notification_v1_listener listener{.idled = &onIdle,
                                                                    .resumed = &onResumed};
        proxies_->notification.reset(
            ext_idle_notifier_v1_get_idle_notification(proxies_->notifier.get(), timeout, seat));
        ext_idle_notification_v1_add_listener(proxies_->notification.get(), &listener, this);
    } else {
        static constexpr org_kde_kwin_idle_timeout_listener listener{.idle = &onIdle,
                                                                     .resumed = &onResumed};
        proxies_->kdeNotification.reset(
            org_kde_kwin_idle_get_idle_timeout(proxies_->kdeNotifier.get(), seat, timeout));
        org_kde_kwin_idle_timeout_add_listener(proxies_->kdeNotification.get(), &listener, this);
    }
}

void WaylandIdle::becameIdle() {
    crossedAt_ = loop_.monotonicNow();
    crossed.emit();
}

void WaylandIdle::resumed() {
    crossedAt_.reset();
    crossed.emit();
}

template <class Notification>
void WaylandIdle::onIdle(void* self, Notification*) {
    static_cast<WaylandIdle*>(self)->becameIdle();
}

template <class Notification>
void WaylandIdle::onResumed(void* self, Notification*) {
    static_cast<WaylandIdle*>(self)->resumed();
}

}  // namespace tendel

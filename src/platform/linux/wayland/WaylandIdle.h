#pragma once

#include <memory>
#include <optional>

#include "platform/linux/wayland/WaylandConnection.h"
#include "presence/IdleSource.h"

namespace tendel {

// Idle time of the first seat as the compositor tells it, by ext_idle_notifier_v1 or, where there
// is none, by org_kde_kwin_idle. Both tell of crossings alone: the compositor counts, and nothing
// wakes us while the user is at work. It begins to count when the watch begins, and it does not
// count while a program keeps the display awake; when one begins to during an absence, sway 1.7
// tells of the return only once that is over. Main thread only.
class WaylandIdle : public IdleSource {
public:
    WaylandIdle(WaylandConnection& connection, EventLoop& loop);
    ~WaylandIdle() override;

    std::optional<double> idleSeconds() override;
    void watch(std::optional<double> thresholdSeconds) override;
    bool tellsCrossings() const override;

private:
    struct Offer {
        std::optional<WaylandConnection::GlobalName> seat;
        std::optional<WaylandConnection::GlobalName> notifier;
        std::optional<WaylandConnection::GlobalName> kdeNotifier;
        friend bool operator==(const Offer&, const Offer&) = default;
    };
    struct Proxies;

    void look();
    void renew();
    void becameIdle();
    void resumed();
    template <class Notification>
    static void onIdle(void* self, Notification*);
    template <class Notification>
    static void onResumed(void* self, Notification*);

    WaylandConnection& connection_;
    EventLoop& loop_;
    Offer offer_;
    std::unique_ptr<Proxies> proxies_;
    std::optional<double> threshold_;
    std::optional<MonotonicInstant> crossedAt_;  // since when idle for the threshold
    Subscription globalsChanged_;                // last member: goes first
};

}  // namespace tendel

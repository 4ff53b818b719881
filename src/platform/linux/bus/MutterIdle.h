#pragma once

#include "platform/linux/bus/BusService.h"
#include "presence/IdleSource.h"

namespace tendel {

// The idle time that GNOME's display server tells, by its crossings of the watched threshold. Main
// thread only; the connection, to the session bus, must outlive it.
class MutterIdle : public IdleSource {
public:
    MutterIdle(BusConnection& session, EventLoop& loop);

    std::optional<double> idleSeconds() override;
    void watch(std::optional<double> thresholdSeconds) override;
    bool tellsCrossings() const override { return isTold_; }

private:
    void askAfresh();
    void ask();
    void addInputWatch();
    void measure();
    void stand(std::optional<Duration> idle);
    void watchFired(uint watch);
    void remove(std::optional<uint>& watch);

    BusService mutter_;
    EventLoop& loop_;
    std::optional<double> threshold_;
    bool isTold_ = false;                        // it said where it stands, and tells what follows
    std::optional<MonotonicInstant> lastInput_;  // while the user is idle for the threshold
    std::optional<uint> idleWatch_;
    std::optional<uint> inputWatch_;
    std::optional<uint> firedEarly_;  // a watch that fired before we knew that it is ours
    Subscription serviceChanged_;
};

}  // namespace tendel

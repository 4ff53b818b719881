#pragma once

#include <cstdint>

#include "platform/linux/x11/X11Connection.h"
#include "presence/IdleSource.h"

namespace tendel {

// Idle time as the X server counts it (MIT-SCREEN-SAVER). The threshold and the first input after
// it are told by two alarms on the server's idle counter (X Synchronization Extension), which keep
// quiet while the user works; without that counter only the value is known. Under Wayland the
// server sees nothing but the input that goes to X windows.
class X11Idle : public IdleSource {
public:
    explicit X11Idle(X11Connection& connection);
    ~X11Idle() override;
    X11Idle(const X11Idle&) = delete;
    X11Idle& operator=(const X11Idle&) = delete;

    std::optional<double> idleSeconds() override;
    void watch(std::optional<double> thresholdSeconds) override;
    bool tellsCrossings() const override { return counter_ != 0 && connection_.isOpen(); }

private:
    void findCounter();
    void destroyAlarms();
    void handle(const X11Event& event);

    X11Connection& connection_;
    bool hasScreenSaver_ = false;
    std::uint32_t counter_ = 0;
    int alarmEvent_ = 0;
    std::optional<double> threshold_;
    std::uint32_t idleAlarm_ = 0;
    std::uint32_t inputAlarm_ = 0;
    Subscription events_;
    Subscription lost_;  // last members: go first
};

}  // namespace tendel

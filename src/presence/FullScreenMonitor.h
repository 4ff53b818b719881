#pragma once

#include <functional>
#include <string_view>
#include <vector>

#include "base/Timer.h"
#include "presence/FullScreenDetection.h"

namespace tendel {

// Answers whether a screen is covered, and announces, once things have settled, that this may have
// changed. Main thread only; the sources must outlive it.
class FullScreenMonitor {
public:
    // The first source that can tell is asked.
    FullScreenMonitor(std::vector<WindowSource*> sources, TopEdge topEdge, EventLoop& loop);

    // The screen with that name; false when it is not known.
    bool isFullScreen(std::string_view screen) const;
    bool isAnyFullScreen() const;

    std::function<void()> onChange = [] {};

private:
    std::optional<DesktopWindows> windows() const;

    std::vector<WindowSource*> sources_;
    TopEdge topEdge_;
    Timer pending_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

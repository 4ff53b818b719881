#include "presence/DisplayWakeRequests.h"

#include <algorithm>

namespace tendel {

WakePolicy WakePolicy::macOS() {
    return {.displayTypes = {"PreventUserIdleDisplaySleep", "NoDisplaySleepAssertion"},
            .ignoredProcesses = {"caffeinate", "Amphetamine"},
            .ownNames = {}};
}

WakePolicy WakePolicy::forLinux() {
    return {.displayTypes = {idleInhibitor},
            .ignoredProcesses =
                {// Keep-awake tools, and the switches for it in the desktops' panels. "user" is
                 // what the
                 // most common of the shell extensions calls itself.
                 "caffeinate",
                 "caffeine",
                 "Caffeine",
                 "caffeine-indicator",
                 "caffeine-ng",
                 "caffeine@patapon.info",
                 "espresso",
                 "inhibit@cinnamon.org",
                 "keep-presence",
                 "lxqt-powermanagement",
                 "mate-inhibit-applet",
                 "org.kde.plasma.battery",
                 "org.kde.plasmashell",
                 "org.kde.powerdevil",
                 "plasmashell",
                 "powerdevil",
                 "sway-audio-idle-inhibit",
                 "us.getsol.budgie-desktop-applet.caffeine",
                 "user",
                 "vigiland",
                 "wakepy",
                 "waybar",
                 "wlinhibit"},
            .ownNames = {"app.tendel.Tendel", "Tendel", "tendel"}};
}

DisplayWakeRequests::DisplayWakeRequests(std::vector<WakeRequestSource*> sources, WakePolicy policy,
                                         std::int32_t ownPid)
    : sources_(std::move(sources)), policy_(std::move(policy)), ownPid_(ownPid) {}

std::optional<std::vector<WakeRequest>> DisplayWakeRequests::current() const {
    std::optional<std::vector<Request>> all;
    for (WakeRequestSource* source : sources_) {
        const auto requests = source->requests();
        if (!requests) continue;
        if (!all) all.emplace();
        all->insert(all->end(), requests->begin(), requests->end());
    }
    return all;
}

bool DisplayWakeRequests::keepsDisplayAwake(const std::vector<Request>& requests) const {
    return keepsDisplayAwake(requests, ownPid_, policy_);
}

bool DisplayWakeRequests::keepsDisplayAwake(const std::vector<Request>& requests,
                                            std::int32_t ownPid, const WakePolicy& policy) {
    return std::ranges::any_of(requests, [&](const Request& request) {
        return request.pid != ownPid && policy.displayTypes.contains(request.type) &&
               !policy.ignoredProcesses.contains(request.processName) &&
               !policy.ownNames.contains(request.processName);
    });
}

}  // namespace tendel

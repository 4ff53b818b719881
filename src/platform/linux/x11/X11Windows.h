#pragma once

#include <array>
#include <set>

#include "platform/linux/x11/X11Connection.h"
#include "presence/FullScreenDetection.h"

namespace tendel {

// The X server's monitors (RandR 1.5), the primary one first, and the windows of the current
// desktop as the window manager lists them (Extended Window Manager Hints); unknown without one
// that does. What is hidden, the desktop's background and our own process's are left out. In pixels
// of the root window.
class X11Windows : public WindowSource {
public:
    explicit X11Windows(X11Connection& connection);

    std::optional<DesktopWindows> windows() override;

private:
    void handle(const X11Event& event);
    void watchClients(const std::vector<std::uint32_t>& clients);
    std::vector<std::uint32_t> stackedClients();

    X11Connection& connection_;
    std::array<std::uint32_t, 15> atoms_{};  // in the order of `Atom`
    int randrEvent_ = 0;                     // the first of its types; 0 without RandR 1.5
    std::set<std::uint32_t> watched_;
    Subscription events_;
    Subscription lost_;  // last members: go first
};

}  // namespace tendel

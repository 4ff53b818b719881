#include "platform/linux/wayland/SwaySources.h"

#include <utility>

namespace tendel {

SwayWindows::SwayWindows(SwayTree& tree, std::int32_t ownPid)
    : tree_(tree), ownPid_(ownPid), told_(windows()), treeChanged_(tree.changed.connect([this] {
          auto now = windows();
          if (std::exchange(told_, now) != now) changed.emit();
      })) {}

std::optional<DesktopWindows> SwayWindows::windows() {
    const auto& desktop = tree_.desktop();
    if (!desktop) return std::nullopt;
    DesktopWindows windows{.screens = desktop->screens, .windows = {}};
    for (const auto& view : desktop->views)
        if (view.isVisible && view.pid != ownPid_)
            windows.windows.push_back(
                {.bounds = view.frame, .isMaximized = view.place == SwayDesktop::Place::tiled});
    return windows;
}

SwayInhibitors::SwayInhibitors(SwayTree& tree)
    : tree_(tree), told_(known()), treeChanged_(tree.changed.connect([this] {
          auto now = known();
          if (std::exchange(told_, now) != now) changed.emit();
      })) {}

std::optional<std::vector<WakeRequest>> SwayInhibitors::requests() {
    tree_.refresh();
    return told_ = known();
}

std::optional<std::vector<WakeRequest>> SwayInhibitors::known() const {
    if (!tree_.desktop()) return std::nullopt;
    std::vector<WakeRequest> requests;
    for (const auto& view : tree_.desktop()->views)
        if (view.inhibitsIdle)
            requests.push_back({.pid = view.pid, .processName = view.name, .type = idleInhibitor});
    return requests;
}

}  // namespace tendel

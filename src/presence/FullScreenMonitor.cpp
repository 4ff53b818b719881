#include "presence/FullScreenMonitor.h"

#include <algorithm>

namespace tendel {

namespace {

// Windows and workspaces move for a while.
constexpr Duration settles = std::chrono::milliseconds(800);

}  // namespace

FullScreenMonitor::FullScreenMonitor(std::vector<WindowSource*> sources, TopEdge topEdge,
                                     EventLoop& loop)
    : sources_(std::move(sources)), topEdge_(topEdge), pending_(loop) {
    for (WindowSource* source : sources_)
        subscriptions_.push_back(
            source->changed.connect([this] { pending_.start(settles, [this] { onChange(); }); }));
}

bool FullScreenMonitor::isFullScreen(std::string_view screen) const {
    const auto found = windows();
    return found && std::ranges::any_of(found->screens, [&](const auto& each) {
               return each.name == screen &&
                      FullScreenDetection::isFullScreen(found->windows, each.frame, topEdge_);
           });
}

bool FullScreenMonitor::isAnyFullScreen() const {
    const auto found = windows();
    return found && std::ranges::any_of(found->screens, [&](const auto& each) {
               return FullScreenDetection::isFullScreen(found->windows, each.frame, topEdge_);
           });
}

std::optional<DesktopWindows> FullScreenMonitor::windows() const {
    for (WindowSource* source : sources_)
        if (auto found = source->windows()) return found;
    return std::nullopt;
}

}  // namespace tendel

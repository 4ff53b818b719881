#pragma once

#include <optional>
#include <utility>

#include "base/Observable.h"

namespace tendel {

// The sections of the main window, in the order of its sidebar.
enum class SidebarItem { privateReminders, workReminders, focus, stats, library };

// What the interface is asked to show.
class AppNavigation {
public:
    // Grows by one each time the main window shall come forward.
    const Observable<int>& windowRequests() const { return windowRequests_; }
    void requestWindow() { windowRequests_.set(windowRequests_.get() + 1); }

    // Opens the main window on a section; the window takes it.
    void request(SidebarItem item) {
        requestedItem_ = item;
        requestWindow();
    }
    std::optional<SidebarItem> takeRequestedItem() { return std::exchange(requestedItem_, {}); }

private:
    Observable<int> windowRequests_{0};
    std::optional<SidebarItem> requestedItem_;
};

}  // namespace tendel

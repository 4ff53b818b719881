#pragma once

#include <QJsonObject>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/wayland/SwayIpc.h"
#include "presence/FullScreenDetection.h"

namespace tendel {

// What sway tells of its outputs and of all windows, also of those that cannot be seen.
struct SwayDesktop {
    enum class Place { fullScreen, floating, tiled };
    struct View {
        std::int32_t pid = 0;
        std::string name;  // its application's identifier, or its class if it is an X client
        Rect frame{};
        Place place = Place::tiled;
        bool isVisible = false;
        bool inhibitsIdle = false;  // by itself or by the user's rule, and now
        friend bool operator==(const View&, const View&) = default;
    };
    std::vector<DesktopWindows::Screen> screens;
    std::vector<View> views;  // front to back

    // From the answer to the question for the tree.
    static SwayDesktop of(const QJsonObject& root);

    friend bool operator==(const SwayDesktop&, const SwayDesktop&) = default;
};

// The last known state of sway's desktop, asked for again when an event may have changed it. sway
// cannot be told to leave out the events for titles: they are read and dropped. Main thread only.
class SwayTree {
public:
    SwayTree(EventLoop& loop, SwayIpc& ipc);

    // Nothing while there is no sway.
    const std::optional<SwayDesktop>& desktop() const { return desktop_; }
    // Asks for what no event tells of. Waits for a tenth of a second at most, and leaves what was
    // known when the answer takes longer; `changed` follows later.
    void refresh();

    Signal<> changed;  // never from within a call of this class

private:
    void connectedChanged();
    void received(SwayIpc::Message message, const QJsonObject& payload);
    void ask();
    void set(std::optional<SwayDesktop> desktop);

    SwayIpc& ipc_;
    std::optional<SwayDesktop> desktop_;
    int awaited_ = 0;          // answers that are to come
    bool isOutdated_ = false;  // by an event since the last question
    Timer announcement_;
    Subscription connection_;
    Subscription messages_;  // last member: goes first
};

}  // namespace tendel

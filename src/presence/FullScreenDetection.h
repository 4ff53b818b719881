#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Signal.h"
#include "model/Geometry.h"

namespace tendel {

// What the display server tells of its screens and of the windows that can be seen on them, without
// ours and without the desktop's background. All rectangles are in one space of its own.
struct DesktopWindows {
    struct Window {
        int layer = 0;  // 0: an ordinary application's
        Rect bounds{};
        bool isDock = false;       // belongs to the desktop's own panels
        bool isMaximized = false;  // and not full screen
        friend bool operator==(const Window&, const Window&) = default;
    };
    struct Screen {
        std::string name;  // as the desktop calls the output
        Rect frame{};
        friend bool operator==(const Screen&, const Screen&) = default;
    };
    std::vector<Screen> screens;  // in the system's order
    std::vector<Window> windows;  // front to back

    friend bool operator==(const DesktopWindows&, const DesktopWindows&) = default;
};

// Whether a window must reach the screen's top to cover it. Where a camera housing or a menu bar
// takes the top of every screen, a full-screen window may begin below it; where only panels do,
// such a window is a maximized one.
enum class TopEdge { ignored, compared };

// Main thread only.
class WindowSource {
public:
    virtual ~WindowSource() = default;
    // Nothing while it cannot tell.
    virtual std::optional<DesktopWindows> windows() = 0;
    Signal<> changed;  // a window may cover a screen now, or no longer
};

// Whether some window covers a screen.
struct FullScreenDetection {
    using Window = DesktopWindows::Window;

    static bool isFullScreen(const std::vector<Window>& windows, const Rect& screen,
                             TopEdge topEdge);
};

}  // namespace tendel

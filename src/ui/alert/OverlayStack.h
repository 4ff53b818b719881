#pragma once

#include <QWidget>

#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "alerts/NotchAlertGeometry.h"
#include "ui/alert/X11Overlay.h"

namespace tendel {

// The program's windows that stand above everything, full-screen windows included, and never have
// the keyboard. Keeps them there, and in one order among themselves: they never fight for the top.
// Must outlive the windows added to it. Main thread only.
class OverlayStack {
public:
    enum class Layer { pill, alert };  // from below

    // Before the window is shown for the first time.
    void add(QWidget& window, Layer layer);
    void remove(Layer layer);
    // Maps the layer's window if it is not, in its place.
    void show(Layer layer);
    void hide(Layer layer);
    bool isShown(Layer layer) const;
    // Whether that layer's window is mapped above some of the other's.
    bool isAbove(Layer upper, Layer lower) const;

    // A window was mapped, moved or unmapped.
    std::function<void()> onChange = [] {};

private:
    QWidget*& at(Layer layer) { return windows_[static_cast<std::size_t>(layer)]; }
    QWidget* at(Layer layer) const { return windows_[static_cast<std::size_t>(layer)]; }
    void place(Layer layer);
    void restack();

    std::array<QWidget*, 2> windows_{};
    std::unique_ptr<StackingWatch> watch_;  // while one of them is mapped
};

// Cuts an overlay's window down to the outline, which hangs from the middle of its top edge. Of it,
// `input` is there for the pointer, in the window's device-independent pixels; all of it when that
// is absent.
void setWindowOutline(const QWidget& window, const AlertOutline& outline,
                      const std::optional<Rect>& input = {});

}  // namespace tendel

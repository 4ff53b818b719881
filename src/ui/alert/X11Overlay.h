#pragma once

#include <QAbstractNativeEventFilter>
#include <QRegion>
#include <QWindow>

#include <cstdint>
#include <functional>

namespace tendel {

// Cuts a window of the X server down to `region`, in device pixels: outside it nothing is drawn,
// whether or not a compositor blends the window, and the pointer goes through to what lies below.
// Does nothing on other platforms.
void setWindowShape(const QWindow& window, const QRegion& region);

// Calls `onRestacked` whenever the window manager has put its windows into another order, which may
// have covered a window that it does not manage. Listens from when it is made until it is
// destroyed.
class StackingWatch : public QAbstractNativeEventFilter {
public:
    explicit StackingWatch(std::function<void()> onRestacked);
    ~StackingWatch() override;

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    std::function<void()> onRestacked_;
    std::uint32_t stackingAtom_ = 0;
};

}  // namespace tendel

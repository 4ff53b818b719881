#pragma once

#include <QAbstractNativeEventFilter>
#include <QRegion>
#include <QWindow>

#include <cstdint>
#include <functional>

namespace tendel {

// Cuts a window of the X server down to `drawn`, in device pixels: outside it nothing is drawn,
// whether or not a compositor blends the window. Outside `input` the pointer goes through to what
// lies below. Does nothing on other platforms.
void setWindowShape(const QWindow& window, const QRegion& drawn, const QRegion& input);
// Puts a window right below another one. Neither is the window manager's.
void stackBelow(const QWindow& window, const QWindow& other);

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

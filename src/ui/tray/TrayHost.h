#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>

#include <cstdint>
#include <functional>

namespace tendel {

// Waits for a place where tray icons can be: a StatusNotifier watcher on the session bus, or a tray
// of the X server. QSystemTrayIcon decides once, when the first one is made, which of them it uses,
// so none may be made before there is one. Main thread only.
class TrayHost : public QAbstractNativeEventFilter {
public:
    TrayHost();
    ~TrayHost() override;

    // Calls `onFound` once: at once when there is a tray already, else as soon as one comes.
    void find(std::function<void()> onFound);

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private:
    bool isThere() const;
    void found();

    std::function<void()> onFound_;
    QDBusServiceWatcher watcher_;
    std::uint32_t managerAtom_ = 0;
    std::uint32_t trayAtom_ = 0;
};

}  // namespace tendel

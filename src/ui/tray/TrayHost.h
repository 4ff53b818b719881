#pragma once

#include <QAbstractNativeEventFilter>
#include <QDBusServiceWatcher>
#include <QObject>

#include <cstdint>
#include <functional>

namespace tendel {

// Where tray icons can be now.
enum class Tray { none, statusNotifier, xEmbed };

// Watches for places where tray icons can be: hosts of StatusNotifier items on the session bus, and
// where there is none, a tray of the X server. They come, go and restart at any time. Main thread
// only.
class TrayHost : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT
public:
    TrayHost();
    ~TrayHost() override;

    // Begins to look; the callbacks are set before.
    void watch();

    // A watcher of StatusNotifier items is there that may not know of those of this program.
    std::function<void()> onWatcher = [] {};
    // A tray came or went; told the first time when there is one.
    std::function<void(Tray)> onChange = [](Tray) {};

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

private Q_SLOTS:
    void watcherDidChange();
    void lookForHost();

private:
    bool hasXEmbedTray() const;
    void set(Tray tray);

    Tray tray_ = Tray::none;
    int question_ = 0;  // only the answer to the last one counts
    QDBusServiceWatcher watcher_;
    std::uint32_t managerAtom_ = 0;
    std::uint32_t trayAtom_ = 0;
};

}  // namespace tendel

#pragma once

#include <QDBusAbstractAdaptor>
#include <QVariantMap>

#include <functional>

namespace tendel {

// The program on the session bus, as org.freedesktop.Application: only one runs at a time, and a
// second start brings the first one's window forward. Without a bus every start runs on its own.
// Main thread only.
class ApplicationService : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    enum class Start { first, handedOver, refused };

    // `object` is what the bus finds at the program's path, with its other interfaces.
    explicit ApplicationService(QObject& object);

    // Takes the program's name on the bus. `handedOver`: another one has it and was asked to come
    // forward, or to carry out `action` when one is named, so that this one can end; `refused`: it
    // would not, and said why on standard error.
    Start claim(const QString& action = {});

    std::function<void()> onActivate = [] {};
    std::function<void(const QString& action)> onAction = [](const QString&) {};

public Q_SLOTS:
    // The names are those of the interface on the bus.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);
};

}  // namespace tendel

#pragma once

#include <QObject>
#include <QVariantMap>

#include <functional>

namespace tendel {

// The program on the session bus, as org.freedesktop.Application: only one runs at a time, and a
// second start brings the first one's window forward. Without a bus every start runs on its own.
// Main thread only.
class ApplicationService : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")
public:
    enum class Start { first, handedOver };

    // Takes the program's name on the bus. `handedOver`: another one has it and was asked to come
    // forward, so that this one can end.
    Start claim();

    std::function<void()> onActivate = [] {};

public Q_SLOTS:
    // The names are those of the interface on the bus.
    void Activate(const QVariantMap& platformData);
    void Open(const QStringList& uris, const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter,
                        const QVariantMap& platformData);
};

}  // namespace tendel

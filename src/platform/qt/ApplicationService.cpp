#include "platform/qt/ApplicationService.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include "base/Log.h"

namespace tendel {

namespace {
constexpr auto name = "app.tendel.Tendel";
constexpr auto path = "/app/tendel/Tendel";
constexpr auto interfaceName = "org.freedesktop.Application";
}  // namespace

ApplicationService::Start ApplicationService::claim() {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        log(LogLevel::info, "app", "no session bus; cannot tell whether Tendel runs already");
        return Start::first;
    }
    // The object first, so that whoever finds the name finds it answering.
    bus.registerObject(path, this, QDBusConnection::ExportAllSlots);
    const auto reply =
        bus.interface()->registerService(name, QDBusConnectionInterface::DontQueueService);
    if (!reply.isValid() || reply.value() != QDBusConnectionInterface::ServiceNotRegistered)
        return Start::first;
    auto activate = QDBusMessage::createMethodCall(name, path, interfaceName, "Activate");
    activate << QVariantMap{};
    const QDBusMessage answer = bus.call(activate, QDBus::Block, 5000);
    if (answer.type() != QDBusMessage::ErrorMessage) return Start::handedOver;
    log(LogLevel::warning, "app", "another Tendel has the name on the bus but does not answer");
    return Start::first;
}

void ApplicationService::Activate(const QVariantMap&) {
    onActivate();
}

void ApplicationService::Open(const QStringList&, const QVariantMap&) {
    onActivate();
}

void ApplicationService::ActivateAction(const QString&, const QVariantList&, const QVariantMap&) {
    onActivate();
}

}  // namespace tendel

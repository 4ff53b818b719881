#include "platform/qt/ApplicationService.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <cstdio>

#include "base/Log.h"

namespace tendel {

namespace {
constexpr auto name = "app.tendel.Tendel";
constexpr auto path = "/app/tendel/Tendel";
constexpr auto interfaceName = "org.freedesktop.Application";
// Of errors that the program itself answers with.
constexpr auto ownErrors = "app.tendel.Tendel.Error.";

QDBusMessage request(const QString& action) {
    const auto call = [](const char* method) {
        return QDBusMessage::createMethodCall(name, path, interfaceName, method);
    };
    if (action.isEmpty()) return call("Activate") << QVariantMap{};
    return call("ActivateAction") << action << QVariantList{} << QVariantMap{};
}

}  // namespace

ApplicationService::ApplicationService(QObject& object) : QDBusAbstractAdaptor(&object) {}

ApplicationService::Start ApplicationService::claim(const QString& action) {
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) {
        log(LogLevel::info, "app", "no session bus; cannot tell whether Tendel runs already");
        return Start::first;
    }
    // The object first, so that whoever finds the name finds it answering.
    bus.registerObject(path, parent(), QDBusConnection::ExportAdaptors);
    const auto reply =
        bus.interface()->registerService(name, QDBusConnectionInterface::DontQueueService);
    if (!reply.isValid() || reply.value() != QDBusConnectionInterface::ServiceNotRegistered)
        return Start::first;
    const QDBusMessage answer = bus.call(request(action), QDBus::Block, 5000);
    if (answer.type() != QDBusMessage::ErrorMessage) return Start::handedOver;
    if (answer.errorName().startsWith(QLatin1String(ownErrors))) {
        std::fprintf(stderr, "%s\n", qUtf8Printable(answer.errorMessage()));
        return Start::refused;
    }
    log(LogLevel::warning, "app", "another Tendel has the name on the bus but does not answer");
    return Start::first;
}

void ApplicationService::Activate(const QVariantMap&) {
    onActivate();
}

void ApplicationService::Open(const QStringList&, const QVariantMap&) {
    onActivate();
}

void ApplicationService::ActivateAction(const QString& action, const QVariantList&,
                                        const QVariantMap&) {
    onAction(action);
}

}  // namespace tendel

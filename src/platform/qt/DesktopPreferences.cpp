#include "platform/qt/DesktopPreferences.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusVariant>
#include <QMap>
#include <QRegularExpression>

#include <utility>

#include "base/Log.h"

namespace tendel {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interfaceName = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");

constexpr auto motionVariable = "TENDEL_REDUCE_MOTION";
constexpr auto schemeVariable = "TENDEL_COLOR_SCHEME";

template <class T>
bool assign(T& field, T value) {
    return std::exchange(field, value) != value;
}

// "Cantarell Bold 11" is a family, a style and a size.
QString familyOf(const QString& font) {
    static const QRegularExpression tail(
        QStringLiteral("(\\s+(Regular|Medium|Bold|Semi-?Bold|Light|Italic|Oblique))*\\s+[\\d.]+$"),
        QRegularExpression::CaseInsensitiveOption);
    return QString(font).remove(tail).trimmed();
}

}  // namespace

DesktopPreferences::DesktopPreferences() {
    const QString scheme = qEnvironmentVariable(schemeVariable);
    if (scheme == QLatin1String("dark")) colorScheme_ = ColorScheme::dark;
    if (scheme == QLatin1String("light")) colorScheme_ = ColorScheme::light;
    reducesMotion_ = qEnvironmentVariable(motionVariable) == QLatin1String("1");

    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.isConnected()) return;
    bus.connect(service, path, interfaceName, QStringLiteral("SettingChanged"), this,
                SLOT(portalSettingChanged(QDBusMessage)));
    readAll();
}

void DesktopPreferences::readAll() {
    auto call =
        QDBusMessage::createMethodCall(service, path, interfaceName, QStringLiteral("ReadAll"));
    call << QStringList{appearance, gnome};
    auto* watcher =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, watcher] {
        watcher->deleteLater();
        const QDBusMessage answer = watcher->reply();
        if (answer.type() != QDBusMessage::ReplyMessage ||
            answer.signature() != QLatin1String("a{sa{sv}}")) {
            log(LogLevel::info, "preferences", "the desktop does not tell its settings");
            return;
        }
        const auto groups = qdbus_cast<QMap<QString, QVariantMap>>(answer.arguments().constFirst());
        bool isOther = false;
        for (auto group = groups.begin(); group != groups.end(); ++group)
            for (auto setting = group->begin(); setting != group->end(); ++setting)
                isOther |= apply(group.key(), setting.key(), setting.value());
        if (isOther) Q_EMIT changed();
    });
}

void DesktopPreferences::portalSettingChanged(const QDBusMessage& message) {
    if (message.signature() != QLatin1String("ssv")) return;
    const QVariantList arguments = message.arguments();
    const auto value = arguments[2].value<QDBusVariant>().variant();
    if (apply(arguments[0].toString(), arguments[1].toString(), value)) Q_EMIT changed();
}

// Whether that made a difference. Values of another type than expected change nothing.
bool DesktopPreferences::apply(const QString& group, const QString& key, const QVariant& value) {
    const auto isNumber = value.userType() == QMetaType::UInt;
    if (group == appearance && key == QLatin1String("color-scheme") && isNumber) {
        if (qEnvironmentVariableIsSet(schemeVariable)) return false;
        const uint scheme = value.toUInt();
        return assign(colorScheme_, scheme == 1   ? ColorScheme::dark
                                    : scheme == 2 ? ColorScheme::light
                                                  : ColorScheme::noPreference);
    }
    if (group == appearance && key == QLatin1String("contrast") && isNumber)
        return assign(hasHighContrast_, value.toUInt() == 1);
    if (group == gnome && key == QLatin1String("enable-animations") &&
        value.userType() == QMetaType::Bool) {
        if (qEnvironmentVariableIsSet(motionVariable)) return false;
        return assign(reducesMotion_, !value.toBool());
    }
    if (group == gnome && key == QLatin1String("font-name") &&
        value.userType() == QMetaType::QString)
        return assign(fontFamily_, familyOf(value.toString()));
    return false;
}

}  // namespace tendel

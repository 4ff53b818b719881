#include "platform/linux/bus/LogindActivity.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

#include <unistd.h>

#include "platform/linux/bus/Logind.h"

namespace tendel {

using namespace Qt::StringLiterals;

namespace {

std::optional<bool> truth(const QVariant& value) {
    if (value.metaType() != QMetaType::fromType<bool>()) return std::nullopt;
    return value.toBool();
}

// A user's display session is told as its name and its object; "/" when there is none.
QString sessionOf(const QVariant& display) {
    const auto pair = display.value<QDBusArgument>();
    if (pair.currentSignature() != u"(so)") return QString();
    QString id;
    QDBusObjectPath path;
    pair.beginStructure();
    pair >> id >> path;
    pair.endStructure();
    return path.path();
}

}  // namespace

LogindActivity::LogindActivity(BusConnection& system, QString sessionId)
    : logind_(system, logind::name()), sessionId_(std::move(sessionId)) {
    serviceChanged_ = logind_.changed.connect([this] { askAfresh(); });
    askAfresh();
}

std::optional<bool> LogindActivity::is(SystemState state) const {
    switch (state) {
        case SystemState::locked:
            return isLocked_;
        case SystemState::sessionInactive:
            return isActive_ ? std::optional(!*isActive_) : std::nullopt;
        case SystemState::screensAsleep:
            return isPreparingForSleep_;
        case SystemState::screensaverRunning:
            return std::nullopt;
    }
    return std::nullopt;
}

void LogindActivity::askAfresh() {
    const bool knewAny = isLocked_ || isActive_ || isPreparingForSleep_;
    isLocked_ = isActive_ = isPreparingForSleep_ = std::nullopt;
    // Before the property is read, so that nothing is missed between; logind sends no change of the
    // property.
    logind_.listen(logind::manager(), u"PrepareForSleep"_s, [this](const QDBusMessage& signal) {
        if (const auto begins = firstArgument<bool>(signal)) set(isPreparingForSleep_, begins);
    });
    logind_.read(logind::manager(), u"PreparingForSleep"_s, [this](const QVariant& value) {
        if (!isPreparingForSleep_) set(isPreparingForSleep_, truth(value));
    });
    findSessionById();
    if (knewAny) changed.emit();
}

void LogindActivity::findSessionById() {
    if (sessionId_.isEmpty()) return findSessionByProcess();
    logind_.call(logind::manager(), u"GetSession"_s, {sessionId_},
                 [this](const QDBusMessage& reply) {
                     const auto session = firstArgument<QDBusObjectPath>(reply);
                     if (session) return useSession(session->path());
                     findSessionByProcess();
                 });
}

void LogindActivity::findSessionByProcess() {
    logind_.call(logind::manager(), u"GetSessionByPID"_s, {static_cast<uint>(::getpid())},
                 [this](const QDBusMessage& reply) {
                     const auto session = firstArgument<QDBusObjectPath>(reply);
                     if (session) return useSession(session->path());
                     findSessionByUser();
                 });
}

// A program that the user's own service manager started belongs to no session.
void LogindActivity::findSessionByUser() {
    logind_.call(logind::manager(), u"GetUser"_s, {static_cast<uint>(::getuid())},
                 [this](const QDBusMessage& reply) {
                     const auto user = firstArgument<QDBusObjectPath>(reply);
                     if (!user) return;
                     logind_.read({user->path(), u"org.freedesktop.login1.User"_s}, u"Display"_s,
                                  [this](const QVariant& display) {
                                      const QString path = sessionOf(display);
                                      if (path.size() > 1) useSession(path);
                                  });
                 });
}

void LogindActivity::useSession(const QString& path) {
    const BusObject session{path, u"org.freedesktop.login1.Session"_s};
    // The hint, not the signals Lock and Unlock, which only ask for it.
    logind_.follow(session, u"LockedHint"_s,
                   [this](const QVariant& value) { set(isLocked_, truth(value)); });
    logind_.follow(session, u"Active"_s,
                   [this](const QVariant& value) { set(isActive_, truth(value)); });
}

void LogindActivity::set(std::optional<bool>& fact, std::optional<bool> value) {
    if (std::exchange(fact, value) != value) changed.emit();
}

}  // namespace tendel

#include "platform/linux/bus/LogindInhibitors.h"

#include <QDBusArgument>

#include "platform/linux/bus/Logind.h"

namespace tendel {

using namespace Qt::StringLiterals;

namespace {

bool namesIdle(const QString& what) {
    return what.split(u':').contains(u"idle"_s);
}

}  // namespace

LogindInhibitors::LogindInhibitors(BusConnection& system) : logind_(system, logind::name()) {
    serviceChanged_ = logind_.changed.connect([this] { askAfresh(); });
    askAfresh();
}

void LogindInhibitors::askAfresh() {
    isAnyIdle_.reset();
    logind_.follow(logind::manager(), u"BlockInhibited"_s, [this](const QVariant& what) {
        const auto isAnyIdle =
            what.isValid() ? std::optional(namesIdle(what.toString())) : std::nullopt;
        if (std::exchange(isAnyIdle_, isAnyIdle) != isAnyIdle) changed.emit();
    });
    changed.emit();
}

std::optional<std::vector<WakeRequest>> LogindInhibitors::requests() {
    if (!logind_.isRunning()) return std::nullopt;
    // Nobody is told of a second one while the first is in force, nor of its end: asked each time.
    if (isAnyIdle_ == false) return std::vector<WakeRequest>{};
    const QDBusMessage reply = logind_.callAndWait(logind::manager(), u"ListInhibitors"_s);
    if (reply.type() != QDBusMessage::ReplyMessage || reply.signature() != u"a(ssssuu)")
        return std::nullopt;
    std::vector<WakeRequest> requests;
    const auto list = reply.arguments().constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        QString what;
        QString who;
        QString why;
        QString mode;
        uint user = 0;
        uint pid = 0;
        list.beginStructure();
        list >> what >> who >> why >> mode >> user >> pid;
        list.endStructure();
        if (namesIdle(what) && mode == u"block")
            requests.push_back({static_cast<std::int32_t>(pid), who.toStdString(), idleInhibitor});
    }
    list.endArray();
    return requests;
}

}  // namespace tendel

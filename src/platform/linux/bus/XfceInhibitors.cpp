#include "platform/linux/bus/XfceInhibitors.h"

#include <QDBusError>

namespace tendel {

using namespace Qt::StringLiterals;

namespace {

BusObject inhibit() {
    return {u"/org/freedesktop/PowerManagement/Inhibit"_s,
            u"org.freedesktop.PowerManagement.Inhibit"_s};
}

}  // namespace

XfceInhibitors::XfceInhibitors(BusConnection& session)
    : powerManager_(session, u"org.freedesktop.PowerManagement"_s) {
    serviceChanged_ = powerManager_.changed.connect([this] { askAfresh(); });
    askAfresh();
}

void XfceInhibitors::askAfresh() {
    lists_ = true;
    powerManager_.listen(inhibit(), u"HasInhibitChanged"_s,
                         [this](const QDBusMessage&) { changed.emit(); });
    changed.emit();
}

std::optional<std::vector<WakeRequest>> XfceInhibitors::requests() {
    if (!powerManager_.isRunning() || !lists_) return std::nullopt;
    // Not every version tells of changes, and none of a second inhibitor: asked each time.
    const QDBusMessage reply = powerManager_.callAndWait(inhibit(), u"GetInhibitors"_s);
    const auto names = firstArgument<QStringList>(reply);
    if (!names) {
        lists_ = QDBusError(reply).type() != QDBusError::UnknownMethod;
        return std::nullopt;
    }
    std::vector<WakeRequest> requests;
    for (const QString& name : *names)
        requests.push_back({0, name.toStdString(), idleInhibitor});
    return requests;
}

}  // namespace tendel

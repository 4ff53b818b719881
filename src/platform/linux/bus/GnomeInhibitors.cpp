#include "platform/linux/bus/GnomeInhibitors.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

namespace tendel {

using namespace Qt::StringLiterals;

namespace {

constexpr uint sessionIdle = 8;  // among the flags

BusObject manager() {
    return {u"/org/gnome/SessionManager"_s, u"org.gnome.SessionManager"_s};
}

}  // namespace

GnomeInhibitors::GnomeInhibitors(BusConnection& session)
    : sessionManager_(session, u"org.gnome.SessionManager"_s) {
    serviceChanged_ = sessionManager_.changed.connect([this] { askAfresh(); });
    askAfresh();
}

std::optional<std::vector<WakeRequest>> GnomeInhibitors::requests() {
    if (!isListed_) return std::nullopt;
    std::vector<WakeRequest> requests;
    for (const auto& [path, inhibitor] : inhibitors_)
        if (inhibitor.isInForce()) requests.push_back({0, *inhibitor.appId, idleInhibitor});
    return requests;
}

void GnomeInhibitors::askAfresh() {
    const bool wasListed = std::exchange(isListed_, false);
    inhibitors_.clear();
    sessionManager_.listen(manager(), u"InhibitorAdded"_s, [this](const QDBusMessage& signal) {
        if (const auto path = firstArgument<QDBusObjectPath>(signal)) add(path->path());
    });
    sessionManager_.listen(manager(), u"InhibitorRemoved"_s, [this](const QDBusMessage& signal) {
        if (const auto path = firstArgument<QDBusObjectPath>(signal)) remove(path->path());
    });
    sessionManager_.call(manager(), u"GetInhibitors"_s, {}, [this](const QDBusMessage& reply) {
        if (reply.signature() != u"ao") return;
        for (const auto& path : qdbus_cast<QList<QDBusObjectPath>>(reply.arguments().constFirst()))
            add(path.path());
        isListed_ = true;
        changed.emit();
    });
    if (wasListed) changed.emit();
}

void GnomeInhibitors::add(const QString& path) {
    if (!inhibitors_.try_emplace(path).second) return;
    const BusObject object{path, u"org.gnome.SessionManager.Inhibitor"_s};
    // One that is gone before it answers answers with an error.
    const auto tell = [this, path](auto fill) {
        return [this, path, fill](const QDBusMessage& reply) {
            const auto found = inhibitors_.find(path);
            if (found == inhibitors_.end()) return;
            fill(found->second, reply);
            if (found->second.isInForce()) changed.emit();
        };
    };
    sessionManager_.call(object, u"GetFlags"_s, {},
                         tell([](Inhibitor& inhibitor, const QDBusMessage& reply) {
                             const auto flags = firstArgument<uint>(reply);
                             inhibitor.isForIdle = flags && (*flags & sessionIdle) != 0;
                         }));
    sessionManager_.call(
        object, u"GetAppId"_s, {}, tell([](Inhibitor& inhibitor, const QDBusMessage& reply) {
            inhibitor.appId = firstArgument<QString>(reply).value_or(QString()).toStdString();
        }));
}

void GnomeInhibitors::remove(const QString& path) {
    const auto found = inhibitors_.find(path);
    if (found == inhibitors_.end()) return;
    const bool wasInForce = found->second.isInForce();
    inhibitors_.erase(found);
    if (wasInForce) changed.emit();
}

}  // namespace tendel

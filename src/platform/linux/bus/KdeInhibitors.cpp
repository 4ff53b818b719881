#include "platform/linux/bus/KdeInhibitors.h"

#include <QDBusArgument>

#include <algorithm>
#include <iterator>

namespace tendel {

using namespace Qt::StringLiterals;

namespace {

constexpr uint changeScreenSettings = 4;

BusObject agent() {
    return {u"/org/kde/Solid/PowerManagement/PolicyAgent"_s,
            u"org.kde.Solid.PowerManagement.PolicyAgent"_s};
}

std::optional<std::set<KdeInhibitors::Inhibition>> inhibitionsOf(const QDBusMessage& reply) {
    if (reply.signature() != u"a(ss)") return std::nullopt;
    std::set<KdeInhibitors::Inhibition> all;
    const auto list = reply.arguments().constFirst().value<QDBusArgument>();
    list.beginArray();
    while (!list.atEnd()) {
        KdeInhibitors::Inhibition one;
        list.beginStructure();
        list >> one.first >> one.second;
        list.endStructure();
        all.insert(std::move(one));
    }
    list.endArray();
    return all;
}

}  // namespace

KdeInhibitors::KdeInhibitors(BusConnection& session)
    : policyAgent_(session, u"org.kde.Solid.PowerManagement.PolicyAgent"_s) {
    serviceChanged_ = policyAgent_.changed.connect([this] { askAfresh(); });
    askAfresh();
}

void KdeInhibitors::askAfresh() {
    others_.clear();
    policyAgent_.listen(agent(), u"InhibitionsChanged"_s, [this](const QDBusMessage&) { ask(); });
    ask();
    set(std::nullopt);
}

void KdeInhibitors::ask() {
    // Two answers belong together only when nothing changed in between.
    const auto isLast = [this, asked = ++asked_] { return asked == asked_; };
    const auto takeAny = [this, isLast](const QDBusMessage& any) {
        if (!isLast()) return;
        const auto isAnyForScreens = firstArgument<bool>(any);
        if (!isAnyForScreens) return set(std::nullopt);
        policyAgent_.call(agent(), u"ListInhibitions"_s, {},
                          [this, isLast, isAny = *isAnyForScreens](const QDBusMessage& list) {
                              if (isLast()) take(inhibitionsOf(list), isAny);
                          });
    };
    policyAgent_.call(agent(), u"HasInhibition"_s, {changeScreenSettings}, takeAny);
}

// The list does not say what each of them inhibits. Those that were in it while nothing kept the
// screens are known not to; the rest is believed to.
void KdeInhibitors::take(const std::optional<std::set<Inhibition>>& listed, bool isAnyForScreens) {
    if (!listed) return set(std::nullopt);
    const std::set<Inhibition>& all = *listed;
    std::set<Inhibition> stillOthers;
    std::set_intersection(all.begin(), all.end(), others_.begin(), others_.end(),
                          std::inserter(stillOthers, stillOthers.end()));
    others_ = isAnyForScreens ? stillOthers : all;
    std::vector<WakeRequest> requests;
    // Nobody is left to have done it when one of them asked a second time, for the screens.
    const bool areAllOthers = isAnyForScreens && others_.size() == all.size();
    for (const Inhibition& one : all)
        if (areAllOthers || !others_.contains(one))
            requests.push_back({0, one.first.toStdString(), idleInhibitor});
    set(std::move(requests));
}

void KdeInhibitors::set(std::optional<std::vector<WakeRequest>> requests) {
    if (requests == requests_) return;
    requests_ = std::move(requests);
    changed.emit();
}

}  // namespace tendel

#include "platform/linux/bus/BusSources.h"

namespace tendel {

BusSources::BusSources(EventLoop& loop, const BusAddress& session, const BusAddress& system)
    : session_(loop, session), system_(loop, system), mutterIdle_(session_, loop) {}

void BusSources::addTo(PresenceSources& sources) {
    for (SystemActivitySource* source : std::initializer_list<SystemActivitySource*>{
             &logindActivity_, &screenSavers_, &mutterDisplayPower_})
        sources.system.push_back(source);
    for (WakeRequestSource* source : std::initializer_list<WakeRequestSource*>{
             &gnomeInhibitors_, &kdeInhibitors_, &xfceInhibitors_, &logindInhibitors_})
        sources.wakeRequests.push_back(source);
}

}  // namespace tendel

#include "presence/SystemActivity.h"

#include <algorithm>

namespace tendel {

SystemActivity::SystemActivity(const std::vector<SystemActivitySource*>& sources)
    : sources_(sources) {
    read();
    for (SystemActivitySource* source : sources_)
        subscriptions_.push_back(source->changed.connect([this] {
            const bool wasAway = isSystemAway();
            read();
            if (wasAway == isSystemAway()) return;
            if (wasAway)
                onReturn();
            else
                onAway();
        }));
}

void SystemActivity::read() {
    for (std::size_t i = 0; i < states_.size(); ++i)
        states_[i] = std::ranges::any_of(sources_, [&](const SystemActivitySource* source) {
            return source->is(static_cast<SystemState>(i)).value_or(false);
        });
}

bool SystemActivity::isSystemAway() const {
    return std::ranges::any_of(states_, std::identity());
}

}  // namespace tendel

#include "platform/linux/bus/MutterDisplayPower.h"

namespace tendel {

using namespace Qt::StringLiterals;

MutterDisplayPower::MutterDisplayPower(BusConnection& session)
    : mutter_(session, u"org.gnome.Mutter.DisplayConfig"_s) {
    serviceChanged_ = mutter_.changed.connect([this] { askAfresh(); });
    askAfresh();
}

std::optional<bool> MutterDisplayPower::is(SystemState state) const {
    return state == SystemState::screensAsleep ? areAsleep_ : std::nullopt;
}

void MutterDisplayPower::askAfresh() {
    mutter_.follow({u"/org/gnome/Mutter/DisplayConfig"_s, u"org.gnome.Mutter.DisplayConfig"_s},
                   u"PowerSaveMode"_s, [this](const QVariant& mode) {
                       // 0 is on, 1 to 3 are the ways to be off, -1 is not known.
                       const bool isKnown =
                           mode.metaType() == QMetaType::fromType<int>() && mode.toInt() >= 0;
                       set(isKnown ? std::optional(mode.toInt() != 0) : std::nullopt);
                   });
    set(std::nullopt);
}

void MutterDisplayPower::set(std::optional<bool> areAsleep) {
    if (std::exchange(areAsleep_, areAsleep) != areAsleep) changed.emit();
}

}  // namespace tendel

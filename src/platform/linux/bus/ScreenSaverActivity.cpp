#include "platform/linux/bus/ScreenSaverActivity.h"

#include <QStringList>

namespace tendel {

using namespace Qt::StringLiterals;

ScreenSaverActivity::ScreenSaverActivity(BusConnection& session) {
    for (const QString& vendor :
         {u"freedesktop"_s, u"gnome"_s, u"mate"_s, u"cinnamon"_s, u"xfce"_s}) {
        QStringList paths{u"/org/%1/ScreenSaver"_s.arg(vendor)};
        if (vendor == u"freedesktop") paths << u"/ScreenSaver"_s;
        auto& saver = *savers_.emplace_back(std::make_unique<ScreenSaver>(
            session, u"org.%1.ScreenSaver"_s.arg(vendor), std::move(paths)));
        saver.serviceChanged = saver.service.changed.connect([this, &saver] { askAfresh(saver); });
        askAfresh(saver);
    }
}

std::optional<bool> ScreenSaverActivity::is(SystemState state) const {
    if (state != SystemState::screensaverRunning) return std::nullopt;
    std::optional<bool> any;
    for (const auto& saver : savers_)
        if (saver->isActive) any = any.value_or(false) || *saver->isActive;
    return any;
}

void ScreenSaverActivity::askAfresh(ScreenSaver& saver) {
    // From every object: some desktops have the same one in several places, and all of them tell.
    saver.service.listen({QString(), saver.interfaceName}, u"ActiveChanged"_s,
                         [this, &saver](const QDBusMessage& signal) {
                             if (const auto isActive = firstArgument<bool>(signal))
                                 set(saver, isActive);
                         });
    ask(saver, 0);
    set(saver, std::nullopt);
}

void ScreenSaverActivity::ask(ScreenSaver& saver, qsizetype path) {
    if (path == saver.paths.size()) return;
    saver.service.call({saver.paths[path], saver.interfaceName}, u"GetActive"_s, {},
                       [this, &saver, path](const QDBusMessage& reply) {
                           // What the signal said is newer.
                           if (saver.isActive) return;
                           const auto isActive = firstArgument<bool>(reply);
                           if (isActive) return set(saver, isActive);
                           ask(saver, path + 1);
                       });
}

void ScreenSaverActivity::set(ScreenSaver& saver, std::optional<bool> isActive) {
    const auto before = is(SystemState::screensaverRunning);
    saver.isActive = isActive;
    if (is(SystemState::screensaverRunning) != before) changed.emit();
}

}  // namespace tendel

#include "ui/window/FocusLook.h"

#include <QCoreApplication>

#include <algorithm>
#include <array>

namespace tendel {

namespace {

struct SoundLook {
    const char* name;
    std::string_view symbol;
};

// In the order of FocusSound.
constexpr std::array<SoundLook, focusSoundNames.size()> soundLooks{{
    {QT_TRANSLATE_NOOP("FocusLook", "Brown Noise"), "waveform"},
    {QT_TRANSLATE_NOOP("FocusLook", "Pink Noise"), "waveform.dots"},
    {QT_TRANSLATE_NOOP("FocusLook", "White Noise"), "waveform.grain"},
    {QT_TRANSLATE_NOOP("FocusLook", "Ocean"), "waves"},
    {QT_TRANSLATE_NOOP("FocusLook", "Wind"), "wind"},
    {QT_TRANSLATE_NOOP("FocusLook", "Rain"), "drop"},
    {QT_TRANSLATE_NOOP("FocusLook", "Fireplace"), "fireplace"},
    {QT_TRANSLATE_NOOP("FocusLook", "Fan"), "fan"},
    {QT_TRANSLATE_NOOP("FocusLook", "Melody"), "music.note"},
}};

}  // namespace

FocusSession firstSession(const FocusPlan& plan) {
    return {.plan = plan, .phaseDuration = plan.focusMinutes * 60.0};
}

Theme::Color phaseColor(const FocusSession& session) {
    return session.isBreak() ? Theme::Color::good : Theme::Color::focusAccent;
}

bool hasLongBreaks(const FocusPlan& plan) {
    if (!plan.longBreakEvery) return false;
    const FocusSession last{.plan = plan, .round = std::max(*plan.longBreakEvery, 1)};
    return last.nextBreak() == FocusSession::Phase::longBreak;
}

QString soundName(FocusSound sound) {
    return QCoreApplication::translate("FocusLook",
                                       soundLooks[static_cast<std::size_t>(sound)].name);
}

std::string_view symbolOf(FocusSound sound) {
    return soundLooks[static_cast<std::size_t>(sound)].symbol;
}

}  // namespace tendel

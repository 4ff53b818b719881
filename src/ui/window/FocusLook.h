#pragma once

#include <QString>

#include <string_view>

#include "focus/FocusSession.h"
#include "model/SoundMix.h"
#include "ui/theme/Theme.h"

// What focus sessions and their sounds look like.
namespace tendel {

// The session that a plan would begin, standing still before its first focus phase.
FocusSession firstSession(const FocusPlan& plan);
Theme::Color phaseColor(const FocusSession& session);
// Whether the plan ever comes to a long break: its breaks must be short for that.
bool hasLongBreaks(const FocusPlan& plan);

QString soundName(FocusSound sound);
std::string_view symbolOf(FocusSound sound);

}  // namespace tendel

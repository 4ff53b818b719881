#include "menubar/MenuBarLabel.h"

#include "menubar/Countdown.h"

namespace tendel {

namespace {

constexpr std::string_view pauseSymbol = "pause.circle";

std::string textOf(const FocusSession& session, Instant now) {
    if (session.phase == FocusSession::Phase::ready) return "Ready";
    return session.endsAt ? countdownText(now, *session.endsAt) : std::string();
}

}  // namespace

std::string_view symbolOf(const FocusSession& session) {
    if (session.isPaused()) return pauseSymbol;
    return session.isBreak() ? "cup.and.saucer" : "target";
}

MenuBarLabel MenuBarLabel::of(const Input& input) {
    if (input.focus && !input.isFocusInPill)
        return {std::string(symbolOf(*input.focus)), textOf(*input.focus, input.focusNow)};
    if (input.isPaused && !input.isPauseInPill) return {std::string(pauseSymbol), {}};
    if (input.showsCountdown && input.upcoming)
        return {
            {},
            input.upcoming->title() + " in " + countdownText(input.now, input.upcoming->fireDate)};
    return {};
}

}  // namespace tendel

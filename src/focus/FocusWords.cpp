#include "focus/FocusWords.h"

#include <algorithm>
#include <cmath>

namespace tendel {

namespace {

long wholeSeconds(double seconds) {
    return std::lround(std::ceil(std::max(seconds, 0.0)));
}

}  // namespace

std::string remainingText(double seconds) {
    const long whole = wholeSeconds(seconds);
    return whole > 60 ? std::to_string((whole + 59) / 60) + " min" : std::to_string(whole) + " s";
}

std::string clockText(double seconds) {
    const long whole = wholeSeconds(seconds);
    const std::string rest = std::to_string(whole % 60);
    return std::to_string(whole / 60) + (rest.size() == 1 ? ":0" : ":") + rest;
}

std::string phaseText(const FocusSession& session) {
    if (session.isPaused()) return "Paused";
    switch (session.phase) {
        case FocusSession::Phase::focus:
            return session.isExtension ? "Five more minutes" : "Focusing";
        case FocusSession::Phase::shortBreak:
            return "Break";
        case FocusSession::Phase::longBreak:
            return "Long break";
        case FocusSession::Phase::ready:
            break;
    }
    return "Ready";
}

std::string nextText(const FocusSession& session) {
    if (session.phase != FocusSession::Phase::focus)
        return "round " + std::to_string(session.round + 1);
    const auto next = session.nextBreak();
    return "a " + std::to_string(session.minutesOf(next)) + " min " +
           (next == FocusSession::Phase::longBreak ? "long break" : "break");
}

std::string statusText(const FocusSession& session, Instant now) {
    if (session.phase == FocusSession::Phase::ready) return "Ready for " + nextText(session);
    return phaseText(session) + " · round " + std::to_string(session.round) + " · " +
           remainingText(session.remaining(now)) + " left · then " + nextText(session);
}

}  // namespace tendel

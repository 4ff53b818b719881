#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "focus/FocusSession.h"
#include "reminders/Upcoming.h"

namespace tendel {

// What stands in the menu bar: the focus timer, else a pause, else what comes next.
struct MenuBarLabel {
    // What it follows from. Its text changes only at the whole minutes that the two times tell, so
    // it needs no timer of its own.
    struct Input {
        std::optional<FocusSession> focus{};
        Instant focusNow{};           // as the focus timer tells it
        bool isFocusInPill = false;   // the live pill is where a focus session is seen
        bool isPaused = false;        // reminders
        bool isPauseInPill = false;   // the live pill is where a pause is seen
        bool showsCountdown = false;  // the setting
        std::optional<Upcoming> upcoming{};
        Instant now{};  // as the scheduler tells it
    };

    std::string symbol{};  // empty: the app's own sign
    std::string text{};    // "Stretch in 12m", "24m", "Ready", or nothing

    static MenuBarLabel of(const Input& input);

    friend bool operator==(const MenuBarLabel&, const MenuBarLabel&) = default;
};

// What stands for the state of a focus session: a target, a cup during a break, the pause sign.
std::string_view symbolOf(const FocusSession& session);

}  // namespace tendel

#pragma once

#include <string_view>
#include <variant>
#include <vector>

#include "reminders/PauseOption.h"

namespace tendel {

// What a menu of the menu bar can ask for, beside a pause.
enum class PanelCommand {
    resumeReminders,
    openTendel,
    openStats,
    settings,
    feedback,
    about,
    quit,
};

// One row of the menu, wherever it is drawn: in the panel, by a tray, or over the bus.
struct PanelMenuEntry {
    // Nothing: it only opens `entries`.
    using Action = std::variant<std::monostate, PauseOption, PanelCommand>;

    int id = 0;  // the same row has the same one in every state of the menu; above 0
    std::string_view title{};
    Action action{};
    std::vector<PanelMenuEntry> entries{};
    bool startsGroup = false;  // a line is drawn above it

    friend bool operator==(const PanelMenuEntry&, const PanelMenuEntry&) = default;
};

// The rows in their order: the pauses, or the way out of the one that holds, then the rest.
enum class ReminderState { running, paused };
std::vector<PanelMenuEntry> panelMenu(ReminderState reminders);

}  // namespace tendel

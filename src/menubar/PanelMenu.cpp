#include "menubar/PanelMenu.h"

namespace tendel {

namespace {

// Hosts of a menu on the bus keep rows by their numbers, so none may stand for two things.
constexpr int firstCommandId = 1;
constexpr int pauseMenuId = 20;
constexpr int firstPauseId = pauseMenuId + 1;

PanelMenuEntry command(PanelCommand command, std::string_view title) {
    return {.id = firstCommandId + static_cast<int>(command), .title = title, .action = command};
}

PanelMenuEntry pauses() {
    PanelMenuEntry menu{.id = pauseMenuId, .title = pauseTitle};
    for (const PauseOption option : pauseOptions)
        menu.entries.push_back({.id = firstPauseId + static_cast<int>(option),
                                .title = title(option),
                                .action = option});
    return menu;
}

}  // namespace

std::vector<PanelMenuEntry> panelMenu(ReminderState reminders) {
    using enum PanelCommand;
    std::vector<PanelMenuEntry> menu{
        reminders == ReminderState::paused ? command(resumeReminders, resumeTitle) : pauses(),
        command(openTendel, "Open Tendel"),
        command(openStats, "Open Stats"),
        command(settings, "Settings"),
        command(feedback, "Feedback"),
        command(about, "About Tendel"),
        command(quit, "Quit Tendel")};
    menu[1].startsGroup = menu[3].startsGroup = menu.back().startsGroup = true;
    return menu;
}

}  // namespace tendel

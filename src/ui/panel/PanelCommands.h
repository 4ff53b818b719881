#pragma once

#include <QUrl>

#include <vector>

#include "app/TendelApp.h"
#include "menubar/PanelMenu.h"

namespace tendel {

// The rows of the menu that have something behind them.
std::vector<PanelMenuEntry> availableMenu(ReminderState reminders);
// Does what a row of the menu asks for.
void perform(const PanelMenuEntry::Action& action, TendelApp& app);

// A message to those who make the program, with what they ask first already filled in.
QUrl feedbackMessage();

}  // namespace tendel

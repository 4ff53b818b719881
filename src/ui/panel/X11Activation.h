#pragma once

#include <QWindow>

namespace tendel {

// Brings a window to the front and gives it the keyboard because the user asked for it somewhere
// else, as in a tray: a window manager that only heard of the program's own wish might refuse. No
// taskbar lists the window.
void activateForUser(QWindow& window);

}  // namespace tendel

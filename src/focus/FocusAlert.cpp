#include "focus/FocusAlert.h"

namespace tendel {

std::string FocusAlert::title() const {
    if (kind == Kind::breakEnded) return "Break's over";
    return "Time for a " + std::to_string(minutes) + " min " + (isLong ? "long break" : "break");
}

}  // namespace tendel

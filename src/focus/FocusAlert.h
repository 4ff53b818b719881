#pragma once

#include <string>

#include "base/Instant.h"

namespace tendel {

// What the focus timer announces: a focus phase is over and a break runs, or the break is over.
struct FocusAlert {
    enum class Kind { focusEnded, breakEnded };
    Kind kind = Kind::breakEnded;
    // Of focusEnded only: when the break ends, its whole minutes, and whether it is the long one.
    Instant breakEndsAt;
    int minutes = 0;
    bool isLong = false;

    // "Time for a 5 min break", "Time for a 15 min long break", "Break's over".
    std::string title() const;

    friend bool operator==(const FocusAlert&, const FocusAlert&) = default;
};

// The answers that a focus alert offers.
enum class FocusAlertAction { extendFocus, skipBreak, startFocus, extendBreak };

// Shows focus alerts; the focus timer hands them over, the alert controller implements it.
class FocusAlertPresenting {
public:
    virtual ~FocusAlertPresenting() = default;
    // An announcement that speaks of an earlier phase than this one gives way to it.
    virtual void presentFocusAlert(const FocusAlert& alert) = 0;
    virtual void removeFocusAlerts() = 0;
};

}  // namespace tendel

#pragma once

#include <QString>

#include <functional>
#include <string_view>
#include <vector>

#include "alerts/NotchAlertModel.h"

namespace tendel {

// What a button of the alert does; the last two only turn to the further answers and back.
enum class AlertAnswer {
    start,
    done,
    snooze,
    skip,
    skipAll,
    hadBreak,
    hideInPill,
    extendFocus,
    skipBreak,
    startFocus,
    extendBreak,
    more,
    back
};
inline constexpr int alertAnswerCount = static_cast<int>(AlertAnswer::back) + 1;

// The answers that an alert offers, the likeliest first.
std::vector<AlertAnswer> answersTo(const NotchAlertContent& content);
// The one that is obviously right, filled with the accent; while a break runs there is none.
bool isPrimary(AlertAnswer answer, const NotchAlertContent& content);
QString textOf(AlertAnswer answer, const NotchAlertContent& content);
// Of the button that shows a symbol alone.
std::string_view symbolOf(AlertAnswer answer);
void give(AlertAnswer answer, const NotchAlertActions& actions);

// The answers on the first row, and those that only the ellipsis reaches.
struct AlertAnswerRows {
    std::vector<AlertAnswer> first;  // ends with `more` when there are further ones
    std::vector<AlertAnswer> further;
};
// As many on the first row as fit into `width` with `gap` between them, and at most `limit` besides
// the ellipsis.
AlertAnswerRows arranged(const std::vector<AlertAnswer>& answers, double width, double gap,
                         std::size_t limit, const std::function<double(AlertAnswer)>& widthOf);

}  // namespace tendel

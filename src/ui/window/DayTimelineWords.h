#pragma once

#include <span>
#include <string>
#include <vector>

#include "base/Calendar.h"
#include "reminders/DayTimeline.h"

namespace tendel {

// What one place on the day's line tells.
struct DayTimelineWords {
    std::string title;
    std::vector<std::string> lines;
    std::string sentence;  // all of it: "Drink water, 10:30, done at 10:31"

    // Of at least one mark, in the order of the timeline. More than a few are counted, and only the
    // first are told one by one.
    static DayTimelineWords of(std::span<const DayTimeline::Mark> marks, const Calendar& calendar);
};

// "4 done · 1 missed · 9 to come"; "No alerts today".
std::string summary(const DayTimeline& timeline);
// "Work from 09:00 to 17:00"; "Day off".
std::string workText(const DayTimeline& timeline, const Calendar& calendar);

}  // namespace tendel

#include "reminders/ReminderSchedule.h"

#include <gtest/gtest.h>

#include "reminders/PauseOption.h"
#include "reminders/ReminderStatus.h"

namespace tendel {
namespace {

constexpr auto work = ReminderKind::work, leisure = ReminderKind::private_;

// Berlin in winter unless a text carries another offset. 2026-03-02 is a Monday.
Instant at(std::string_view local) {
    return parseIso8601(std::string(local) + (local.size() == 16 ? ":00+01:00" : "")).value();
}

std::string shown(std::optional<Instant> t) {
    return t ? formatIso8601(*t) : "never";
}

Reminder reminder(ReminderKind kind, TimeOfDay start, int intervalMinutes) {
    Reminder made;
    made.setKind(kind);
    made.setStart(start);
    made.intervalMinutes = intervalMinutes;
    return made;
}

const Calendar calendar("Europe/Berlin", "en_GB");
const WorkingHours always{.start = {0, 0}, .end = {23, 59}, .workdays = {1, 2, 3, 4, 5, 6, 7}};

TEST(ReminderScheduleTest, TakesWhatAHandStoredForTheNearestThatIsATime) {
    const Instant t = at("2026-03-02T09:00");
    ScheduleSearch search(calendar, {.workdays = {}});
    EXPECT_EQ(shown(search.nextFireDate(reminder(leisure, {99, 99}, -5), t)),
              shown(at("2026-03-02T23:59")));
    EXPECT_EQ(shown(search.nextFireDate(reminder(leisure, {-1, -1}, -5), t)),
              shown(at("2026-03-02T09:01")));
}

TEST(WorkingHoursTest, ContainTheirStartAndNotTheirEnd) {
    const WorkingHours standard, backwards{.start = {22, 0}, .end = {6, 0}};
    EXPECT_TRUE(standard.contains(at("2026-03-02T09:00"), calendar));
    EXPECT_FALSE(standard.contains(at("2026-03-02T17:00"), calendar));
    EXPECT_FALSE(standard.contains(at("2026-03-07T10:00"), calendar));
    EXPECT_FALSE(backwards.contains(at("2026-03-02T23:00"), calendar));
}

TEST(ReminderStatusTest, TellsTheNextTimeAndWhatItWaitsFor) {
    const WorkingHours hours;
    struct Case {
        ReminderKind kind;
        TimeOfDay start;
        const char* now;
        const char* expected;
        const char* inEditor = "";
    };
    const Case cases[] = {
        {work, {9, 0}, "2026-03-02T09:30", "10:00"},
        {work, {7, 0}, "2026-03-02T07:10", "09:00 · work starts at 09:00"},
        {leisure, {9, 0}, "2026-03-02T09:30", "17:00 · work ends at 17:00"},
        {work, {9, 0}, "2026-03-02T16:30", "Next tomorrow at 09:00"},
        {work, {9, 0}, "2026-03-06T16:30", "Mon at 09:00"},
        {work, {9, 0}, "2026-03-07T16:30", "Mon at 09:00"},
        {work,
         {18, 0},
         "2026-03-02T09:30",
         "Never fires: none of its times are within working hours (09:00–17:00)",
         "Never fires outside working hours"},
    };
    ScheduleSearch search(calendar, hours);
    const auto check = [&](ScheduleSearch& with, const Reminder& of, const Case& c) {
        const auto status = ReminderStatus::of(of, at(c.now), with);
        EXPECT_EQ(status.text(at(c.now), hours, calendar), c.expected);
        EXPECT_EQ(status.editorWarning(), c.inEditor);
    };
    for (const Case& c : cases)
        check(search, reminder(c.kind, c.start, 60), c);
    ScheduleSearch busy(calendar, always);
    check(busy, reminder(leisure, {9, 0}, 60),
          {leisure,
           {},
           "2026-03-02T09:30",
           "Never fires: none of its times are outside working hours",
           "Never fires on workdays"});
    Reminder off = reminder(work, {9, 0}, 60);
    off.isOn = false;
    check(search, off, {work, {}, "2026-03-02T09:30", ""});
}

TEST(PauseOptionTest, UntilTomorrowEndsAtTheNextMidnightAlsoOnLongDays) {
    struct Case {
        PauseOption option;
        const char* now;
        const char* end;
    };
    const Case cases[] = {
        {PauseOption::untilTomorrow, "2026-03-02T23:50", "2026-03-03T00:00"},
        {PauseOption::untilTomorrow, "2026-10-25T00:30:00+02:00", "2026-10-26T00:00"},
        {PauseOption::hours2, "2026-03-02T23:50", "2026-03-03T01:50"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(shown(pauseEnd(c.option, at(c.now), calendar)), shown(at(c.end)));
}

}  // namespace
}  // namespace tendel

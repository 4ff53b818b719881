#include "reminders/ReminderSchedule.h"

#include <gtest/gtest.h>

#include "reminders/PauseOption.h"
#include "reminders/ReminderStatus.h"

namespace tendel {
namespace {

// Berlin in winter unless a text carries another offset. 2026-03-02 is a Monday; clocks go forward
// on 2026-03-29.
Instant at(std::string_view local) {
    std::string text(local);
    if (text.size() == 16) text += ":00+01:00";
    const auto parsed = parseIso8601(text);
    EXPECT_TRUE(parsed) << local;
    return parsed.value_or(Instant{});
}

Reminder reminder(ReminderKind kind, TimeOfDay start, int intervalMinutes) {
    Reminder made;
    made.setKind(kind);
    made.setStart(start);
    made.intervalMinutes = intervalMinutes;
    return made;
}

class ReminderScheduleTest : public ::testing::Test {
protected:
    std::string shown(std::optional<Instant> t) { return t ? formatIso8601(*t) : "nothing"; }

    Calendar calendar_{"Europe/Berlin", "en_GB"};
};

TEST_F(ReminderScheduleTest, ChainIsAnchoredToItsStartAndEndsAtMidnight) {
    struct Case {
        TimeOfDay start;
        int interval;
        const char* after;
        const char* expected;
    };
    const Case cases[] = {
        {{9, 0}, 60, "2026-03-02T08:00", "2026-03-02T09:00"},
        {{9, 0}, 60, "2026-03-02T09:00", "2026-03-02T10:00"},
        {{9, 0}, 60, "2026-03-02T23:30", "2026-03-03T09:00"},
        {{9, 0}, 45, "2026-03-02T22:40", "2026-03-02T23:15"},
        {{9, 0}, 45, "2026-03-02T23:15", "2026-03-03T09:00"},
        {{9, 0}, 45, "2026-03-02T00:10", "2026-03-02T09:00"},
        {{0, 0}, 1440, "2026-03-02T00:00", "2026-03-03T00:00"},
        {{23, 59}, 1, "2026-03-02T23:59", "2026-03-03T23:59"},
        // The hour from 2:00 does not exist: the start moves to 3:00, and the steps are real
        // minutes.
        {{2, 30}, 60, "2026-03-29T01:00", "2026-03-29T03:00:00+02:00"},
        {{1, 30}, 60, "2026-03-29T01:30", "2026-03-29T03:30:00+02:00"},
        // The hour from 2:00 comes twice: the start is its first time, and the chain goes on
        // through both.
        {{2, 30}, 60, "2026-10-25T02:00:00+02:00", "2026-10-25T02:30:00+02:00"},
        {{2, 30}, 60, "2026-10-25T02:30:00+02:00", "2026-10-25T02:30:00+01:00"},
        // Stored by hand.
        {{9, 0}, 0, "2026-03-02T09:00", "2026-03-02T09:01"},
        {{9, 0}, -5, "2026-03-02T09:00", "2026-03-02T09:01"},
        {{99, 99}, 30, "2026-03-02T09:00", "2026-03-02T23:59"},
    };
    ScheduleSearch search(calendar_, WorkingHours::standard());
    for (const Case& c : cases) {
        const auto schedule =
            ReminderSchedule::of(reminder(ReminderKind::work, c.start, c.interval));
        EXPECT_EQ(shown(search.nextFireDate(schedule, at(c.after))), shown(at(c.expected)))
            << c.start.hour << ":" << c.start.minute << " every " << c.interval << " after "
            << c.after;
    }
}

TEST_F(ReminderScheduleTest, FiresOnlyInsideItsWindow) {
    const WorkingHours standard;
    const WorkingHours noDays{.workdays = {}};
    const WorkingHours everyDay{.workdays = {1, 2, 3, 4, 5, 6, 7}};
    const WorkingHours backwards{.start = {22, 0}, .end = {6, 0}};
    const WorkingHours wholeDays{
        .start = {0, 0}, .end = {23, 59}, .workdays = {1, 2, 3, 4, 5, 6, 7}};
    const auto work = ReminderKind::work;
    const auto leisure = ReminderKind::private_;
    struct Case {
        ReminderKind kind;
        TimeOfDay start;
        int interval;
        WorkingHours hours;
        const char* after;
        const char* expected;  // empty: never
    };
    const Case cases[] = {
        {work, {7, 0}, 30, standard, "2026-03-02T05:00", "2026-03-02T09:00"},
        {work, {7, 0}, 30, standard, "2026-03-07T08:00", "2026-03-09T09:00"},
        {work, {9, 0}, 60, standard, "2026-03-02T16:00", "2026-03-03T09:00"},
        {work, {9, 10}, 60, standard, "2026-03-06T16:10", "2026-03-09T09:10"},
        {work, {18, 0}, 30, standard, "2026-03-02T08:00", ""},
        {work, {9, 0}, 60, noDays, "2026-03-02T08:00", ""},
        {work, {9, 0}, 60, backwards, "2026-03-02T08:00", ""},
        {leisure, {12, 0}, 1440, standard, "2026-03-02T08:00", "2026-03-07T12:00"},
        {leisure, {12, 0}, 60, standard, "2026-03-02T08:00", "2026-03-02T17:00"},
        {leisure, {12, 0}, 60, standard, "2026-03-07T12:30", "2026-03-07T13:00"},
        {leisure, {12, 0}, 60, noDays, "2026-03-02T12:00", "2026-03-02T13:00"},
        {leisure, {12, 0}, 60, backwards, "2026-03-02T12:00", "2026-03-02T13:00"},
        {leisure, {12, 0}, 1440, everyDay, "2026-03-02T12:00", ""},
        {leisure, {12, 0}, 60, wholeDays, "2026-03-02T12:00", ""},
        {leisure, {23, 59}, 60, wholeDays, "2026-03-02T12:00", "2026-03-02T23:59"},
    };
    for (const Case& c : cases) {
        ScheduleSearch search(calendar_, c.hours);
        const auto found = search.nextFireDate(reminder(c.kind, c.start, c.interval), at(c.after));
        EXPECT_EQ(shown(found), *c.expected ? shown(at(c.expected)) : "nothing")
            << rawValue(c.kind) << " " << c.start.hour << ":" << c.start.minute << " after "
            << c.after;
    }
}

TEST_F(ReminderScheduleTest, WindowIncludesItsStartAndNotItsEnd) {
    ScheduleSearch search(calendar_, WorkingHours::standard());
    const auto isWorkTime = [&](const char* t) {
        return search.isOpen(ReminderWindow::Side::workingHours, at(t));
    };
    EXPECT_TRUE(isWorkTime("2026-03-02T09:00"));
    EXPECT_TRUE(isWorkTime("2026-03-02T16:59:59+01:00"));
    EXPECT_FALSE(isWorkTime("2026-03-02T17:00"));
    EXPECT_FALSE(isWorkTime("2026-03-07T10:00"));
    EXPECT_TRUE(WorkingHours::standard().contains(at("2026-03-02T16:59:59+01:00"), calendar_));
    EXPECT_FALSE(WorkingHours::standard().contains(at("2026-03-02T17:00"), calendar_));
}

TEST_F(ReminderScheduleTest, StatusTextTellsTheNextTimeAndWhatItWaitsFor) {
    const auto work = ReminderKind::work;
    const auto leisure = ReminderKind::private_;
    struct Case {
        ReminderKind kind;
        TimeOfDay start;
        int interval;
        const char* now;
        const char* expected;
        const char* inEditor = "";
    };
    const Case cases[] = {
        {work, {9, 0}, 60, "2026-03-02T09:30", "10:00"},
        {work, {7, 0}, 30, "2026-03-02T07:10", "09:00 · work starts at 09:00"},
        {leisure, {9, 0}, 60, "2026-03-02T09:30", "17:00 · work ends at 17:00"},
        {work, {9, 0}, 60, "2026-03-02T16:30", "Next tomorrow at 09:00"},
        {work, {9, 0}, 60, "2026-03-06T16:30", "Mon at 09:00"},
        {work,
         {18, 0},
         60,
         "2026-03-02T09:30",
         "Never fires: none of its times are within working hours (09:00–17:00)",
         "Never fires outside working hours"},
    };
    const WorkingHours hours;
    ScheduleSearch search(calendar_, hours);
    for (const Case& c : cases) {
        const auto status =
            ReminderStatus::of(reminder(c.kind, c.start, c.interval), at(c.now), search);
        EXPECT_EQ(status.text(at(c.now), hours, calendar_), c.expected);
        EXPECT_EQ(status.editorWarning(), c.inEditor);
    }

    Reminder off = reminder(work, {9, 0}, 60);
    off.isOn = false;
    EXPECT_EQ(ReminderStatus::of(off, at("2026-03-02T09:30"), search), ReminderStatus{});

    const WorkingHours always{.start = {0, 0}, .end = {23, 59}, .workdays = {1, 2, 3, 4, 5, 6, 7}};
    ScheduleSearch busy(calendar_, always);
    const auto never =
        ReminderStatus::of(reminder(leisure, {9, 0}, 60), at("2026-03-02T09:30"), busy);
    EXPECT_EQ(never.text(at("2026-03-02T09:30"), always, calendar_),
              "Never fires: none of its times are outside working hours");
    EXPECT_EQ(never.editorWarning(), "Never fires on workdays");
}

TEST_F(ReminderScheduleTest, PauseUntilTomorrowEndsAtTheNextMidnightAlsoOnLongDays) {
    EXPECT_EQ(pauseEnd(PauseOption::untilTomorrow, at("2026-03-02T23:50"), calendar_),
              at("2026-03-03T00:00"));
    EXPECT_EQ(pauseEnd(PauseOption::untilTomorrow, at("2026-10-25T00:30:00+02:00"), calendar_),
              at("2026-10-26T00:00"));
    EXPECT_EQ(pauseEnd(PauseOption::hours2, at("2026-03-02T23:50"), calendar_),
              at("2026-03-03T01:50"));
}

}  // namespace
}  // namespace tendel

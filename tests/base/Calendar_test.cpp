#include "base/Calendar.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tendel {
namespace {

Instant at(std::string_view text) {
    return parseIso8601(text).value();
}

CivilDay date(int year, unsigned month, unsigned day) {
    const std::chrono::sys_days days(std::chrono::year(year) / std::chrono::month(month) /
                                     std::chrono::day(day));
    return CivilDay{static_cast<int>(days.time_since_epoch().count())};
}

std::string shown(const DayInterval& day) {
    return formatIso8601(day.start) + " " + formatIso8601(day.end) + " " +
           std::to_string(day.weekday);
}

TEST(CalendarTest, DaysFollowOneAnotherThroughEveryKindOfClockChange) {
    struct Case {
        const char* what;
        const char* zone;
        CivilDay asked;
        const char* during;  // a moment that belongs to the day
        const char* expected;
    };
    const Case cases[] = {
        {"plain", "Europe/Berlin", date(2026, 3, 2), "2026-03-02T22:59:59Z",
         "2026-03-01T23:00:00Z 2026-03-02T23:00:00Z 2"},
        {"23 hours", "Europe/Berlin", date(2026, 3, 29), "2026-03-29T01:00:00Z",
         "2026-03-28T23:00:00Z 2026-03-29T22:00:00Z 1"},
        {"25 hours", "America/New_York", date(2026, 11, 1), "2026-11-01T06:00:00Z",
         "2026-11-01T04:00:00Z 2026-11-02T05:00:00Z 1"},
        {"no midnight", "America/Sao_Paulo", date(2018, 11, 4), "2018-11-04T03:00:00Z",
         "2018-11-04T03:00:00Z 2018-11-05T02:00:00Z 1"},
        {"set back at midnight", "America/Sao_Paulo", date(2018, 2, 17), "2018-02-18T02:59:59Z",
         "2018-02-17T02:00:00Z 2018-02-18T03:00:00Z 7"},
        {"no midnight either", "Asia/Beirut", date(2022, 3, 27), "2022-03-26T22:00:00Z",
         "2022-03-26T22:00:00Z 2022-03-27T21:00:00Z 1"},
        // The clock shows Saturday again from 02:31 UTC on.
        {"set back over midnight", "America/St_Johns", date(2010, 11, 7), "2010-11-07T02:45:00Z",
         "2010-11-07T02:30:00Z 2010-11-08T03:30:00Z 1"},
        {"half an hour", "Australia/Lord_Howe", date(2026, 4, 5), "2026-04-04T15:00:00Z",
         "2026-04-04T13:00:00Z 2026-04-05T13:30:00Z 1"},
        {"before the skipped day", "Pacific/Apia", date(2011, 12, 29), "2011-12-30T09:59:59Z",
         "2011-12-29T10:00:00Z 2011-12-30T10:00:00Z 5"},
        {"the skipped day", "Pacific/Apia", date(2011, 12, 30), "2011-12-30T10:00:00Z",
         "2011-12-30T10:00:00Z 2011-12-31T10:00:00Z 7"},
        {"another skipped day", "Pacific/Kwajalein", date(1993, 8, 21), "1993-08-21T12:00:00Z",
         "1993-08-21T12:00:00Z 1993-08-22T12:00:00Z 1"},
        {"47 hours", "Pacific/Kwajalein", date(1969, 9, 30), "1969-10-01T11:59:59Z",
         "1969-09-29T13:00:00Z 1969-10-01T12:00:00Z 3"},
        {"no zone", "Etc/Unknown", date(2026, 3, 2), "2026-03-02T00:00:00Z",
         "2026-03-02T00:00:00Z 2026-03-03T00:00:00Z 2"},
        {"unknown zone", "Nowhere/Land", date(2026, 3, 2), "2026-03-02T00:00:00Z",
         "2026-03-02T00:00:00Z 2026-03-03T00:00:00Z 2"},
    };
    for (const Case& c : cases) {
        // Two calendars, since one remembers the days that it was asked about.
        EXPECT_EQ(shown(Calendar(c.zone, "en_GB").day(c.asked)), c.expected) << c.what;
        EXPECT_EQ(shown(Calendar(c.zone, "en_GB").day(at(c.during))), c.expected) << c.what;
    }
}

TEST(CalendarTest, TimeTakesTheNextOneWhenSkippedAndTheFirstWhenRepeated) {
    struct Case {
        const char* zone;
        CivilDay day;
        int hour;
        int minute;
        const char* expected;
    };
    const Case cases[] = {
        {"Europe/Berlin", date(2026, 3, 2), 9, 30, "2026-03-02T08:30:00Z"},
        {"Europe/Berlin", date(2026, 3, 29), 2, 30, "2026-03-29T01:00:00Z"},
        {"Europe/Berlin", date(2026, 3, 29), 9, 0, "2026-03-29T07:00:00Z"},
        {"Europe/Berlin", date(2026, 10, 25), 2, 30, "2026-10-25T00:30:00Z"},
        {"Europe/Berlin", date(2026, 10, 25), 3, 0, "2026-10-25T02:00:00Z"},
        {"Australia/Lord_Howe", date(2026, 10, 4), 2, 15, "2026-10-03T15:30:00Z"},
        {"America/Sao_Paulo", date(2018, 11, 4), 0, 30, "2018-11-04T03:00:00Z"},
        {"America/Sao_Paulo", date(2018, 2, 17), 23, 30, "2018-02-18T01:30:00Z"},
        {"America/St_Johns", date(2010, 11, 7), 0, 0, "2010-11-07T02:30:00Z"},
        {"America/St_Johns", date(2010, 11, 7), 0, 30, "2010-11-07T04:00:00Z"},
        {"Pacific/Apia", date(2011, 12, 30), 10, 0, "2011-12-30T20:00:00Z"},
        // The day ended in a gap, from 23:30 to 0:30.
        {"America/Toronto", date(1919, 3, 30), 23, 45, "1919-03-31T04:30:00Z"},
        {"America/Toronto", date(1919, 3, 31), 0, 15, "1919-03-31T04:30:00Z"},
    };
    for (const Case& c : cases) {
        const Calendar calendar(c.zone, "en_GB");
        EXPECT_EQ(formatIso8601(calendar.time(calendar.day(c.day), c.hour, c.minute)), c.expected)
            << c.zone << " " << c.hour << ":" << c.minute;
    }
}

TEST(CalendarTest, NextMinuteIsWhereTheClockShowsSecondZero) {
    struct Case {
        const char* zone;
        Instant after;
        const char* expected;
    };
    const Case cases[] = {
        {"Europe/Berlin", at("2026-03-02T08:00:00Z"), "2026-03-02T08:01:00Z"},
        {"Europe/Berlin", at("2026-03-02T08:00:00Z") - Duration(1), "2026-03-02T08:00:00Z"},
        {"Europe/Berlin", at("2026-03-02T08:00:59Z") + Duration(999'999), "2026-03-02T08:01:00Z"},
        // 44 minutes and 30 seconds behind UTC until then.
        {"Africa/Monrovia", at("1971-12-01T00:00:00Z"), "1971-12-01T00:00:30Z"},
        {"Africa/Monrovia", at("1972-01-07T00:44:29Z"), "1972-01-07T00:45:00Z"},
    };
    for (const Case& c : cases)
        EXPECT_EQ(formatIso8601(Calendar(c.zone, "en").nextMinute(c.after)), c.expected) << c.zone;
}

TEST(CalendarTest, FollowsAnotherZoneAtOnce) {
    Calendar calendar("Europe/Berlin", "en_GB");
    const Instant t = at("2026-03-02T23:30:00Z");
    EXPECT_EQ(calendar.formatTime(t) + calendar.formatWeekdayShort(t), "00:30Tue");
    calendar.setZone("America/New_York");
    EXPECT_EQ(calendar.formatTime(t) + calendar.formatWeekdayShort(t), "18:30Mon");
    EXPECT_EQ(formatIso8601(calendar.startOfDay(t)), "2026-03-02T05:00:00Z");
}

TEST(CalendarTest, AnswersForMomentsThatNoCalendarKnows) {
    const Calendar calendar("Europe/Berlin", "en_GB");
    for (const Instant t : {Instant::min(), Instant::max()}) {
        const DayInterval day = calendar.day(t);
        EXPECT_LT(day.start, day.end);
        EXPECT_EQ(calendar.nextMinute(t), calendar.nextMinute(t));
        EXPECT_NE(calendar.formatTime(t), "");
    }
}

TEST(CalendarTest, SpeaksTheLocaleThatTheSessionNames) {
    struct Case {
        const char* locale;
        const char* evening;
        const char* weekday;
        int firstWeekday;
    };
    const Case cases[] = {
        {"en_US.UTF-8", "9:05 PM", "Mon Monday", 1},
        {"en_GB", "21:05", "Mon Monday", 2},
        {"de_DE.UTF-8@euro", "21:05", "Mo Montag", 2},
        {"de-AT", "21:05", "Mo Montag", 2},
        {"C.UTF-8", "21:05", "Mon Monday", 2},
        {"POSIX", "21:05", "Mon Monday", 2},
        {"", "21:05", "Mon Monday", 2},
    };
    for (const Case& c : cases) {
        const Calendar calendar("UTC", c.locale);
        std::string evening = calendar.formatTime(21, 5);
        // Newer locale data puts a narrow no-break space before the marker.
        if (const auto space = evening.find("\u202f"); space != std::string::npos)
            evening.replace(space, 3, " ");
        EXPECT_EQ(evening, c.evening) << c.locale;
        const Instant monday = at("2026-03-02T12:00:00Z");
        std::string weekday = calendar.formatWeekdayShort(monday);
        std::erase(weekday, '.');
        EXPECT_EQ(weekday + " " + calendar.formatWeekday(monday), c.weekday) << c.locale;
        EXPECT_EQ(calendar.weekdayName(2), calendar.formatWeekday(monday)) << c.locale;
        EXPECT_EQ(calendar.firstWeekday(), c.firstWeekday) << c.locale;
    }
}

TEST(CalendarTest, TakesZoneAndLocaleOfTheSession) {
    const auto with = [](const char* zone, const char* all, const char* time, const char* lang) {
        ::setenv("TZ", zone, 1);
        ::setenv("LC_ALL", all, 1);
        ::setenv("LC_TIME", time, 1);
        ::setenv("LANG", lang, 1);
        const Calendar calendar = Calendar::system();
        for (const char* variable : {"TZ", "LC_ALL", "LC_TIME", "LANG"})
            ::unsetenv(variable);
        return calendar.zone() + " " + calendar.weekdayName(2);
    };
    EXPECT_EQ(with("Asia/Tokyo", "de_DE.UTF-8", "fr_FR", "C"), "Asia/Tokyo Montag");
    EXPECT_EQ(with(":Europe/Berlin", "", "fr_FR.UTF-8", "C"), "Europe/Berlin lundi");
    EXPECT_EQ(with("", "C", "", ""), "UTC Monday");
    EXPECT_EQ(with("/usr/share/zoneinfo/America/Lima", "", "", "es_PE"), "America/Lima lunes");
}

TEST(CalendarTest, OrdersAndSearchesAsAPersonExpects) {
    const Calendar english("UTC", "en_GB"), swedish("UTC", "sv_SE");
    EXPECT_LT(english.compare("Reminder 2", "Reminder 10"), 0);
    EXPECT_LT(english.compare("apple", "Banana"), 0);
    EXPECT_LT(english.compare("äpple", "zebra"), 0);
    EXPECT_GT(swedish.compare("äpple", "zebra"), 0);
    EXPECT_EQ(english.compare("same", "same"), 0);

    struct Case {
        const char* text;
        const char* part;
        bool isFound;
    };
    const Case cases[] = {
        {"Have a Café break", "cafe b", true},
        {"cafe", "CAFÉ", true},
        {"Cafe\u0301", "café", true},
        {"Stretch", "tretch", true},
        {"Straße", "STRASSE", true},
        {"Water", "", true},
        {"", "water", false},
        {"Water", "wine", false},
        {"10 % off", "10 %", true},
    };
    for (const Case& c : cases)
        EXPECT_EQ(english.containsFolded(c.text, c.part), c.isFound) << c.text << " / " << c.part;
}

TEST(CalendarTest, ReadsAndWritesIso8601) {
    const char* good[][2] = {
        {"2026-03-02T08:15:30Z", "2026-03-02T08:15:30Z"},
        {"2026-03-02T08:15:30+01:30", "2026-03-02T06:45:30Z"},
        {"2026-03-01T23:15:30-02:00", "2026-03-02T01:15:30Z"},
        {"2024-02-29T00:00:00Z", "2024-02-29T00:00:00Z"},
        {"1969-12-31T23:59:59Z", "1969-12-31T23:59:59Z"},
    };
    for (const auto& [text, expected] : good)
        EXPECT_EQ(formatIso8601(at(text)), expected);
    EXPECT_EQ(formatIso8601(Instant(Duration(-1))), "1969-12-31T23:59:59Z");
    for (const char* bad :
         {"", "2026-03-02", "2026-03-02T08:15:30", "2026-03-02 08:15:30Z", "2026-02-29T08:15:30Z",
          "2026-13-02T08:15:30Z", "2026-03-02T24:00:00Z", "2026-03-02T08:60:00Z",
          "2026-03-02T08:15:30Zulu", "2026-03-02T08:15:30+0130", "2026-03-02T08:15:30+25:00",
          "+026-03-02T08:15:30Z"})
        EXPECT_FALSE(parseIso8601(bad)) << bad;
}

}  // namespace
}  // namespace tendel

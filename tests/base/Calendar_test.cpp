#include "base/Calendar.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace tendel {
namespace {

Instant at(std::string_view text) {
    return parseIso8601(text).value();
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
}

TEST(CalendarTest, AnswersForZonesAndMomentsThatNoCalendarKnows) {
    EXPECT_EQ(Calendar("Nowhere/Land", "en_GB").zone(), "UTC");
    EXPECT_EQ(Calendar("Etc/Unknown", "en_GB").zone(), "UTC");
    const Calendar calendar("Europe/Berlin", "en_GB");
    for (const Instant t : {Instant::min(), Instant::max()}) {
        const DayInterval day = calendar.day(t);
        EXPECT_LT(day.start, day.end);
        EXPECT_NE(calendar.nextMinute(t), t);
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
        {"C.UTF-8", "21:05", "Mon Monday", 2},
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

TEST(CalendarTest, WritesDatesWithoutTheirYear) {
    struct Case {
        const char* locale;
        const char* dates;
    };
    const Case cases[] = {
        {"en_US", "November 17 | Nov 17 | Tuesday, November 17"},
        {"en_GB", "17 November | 17 Nov | Tuesday, 17 November"},
        {"", "17 November | 17 Nov | Tuesday, 17 November"},
        {"de_DE", "17. November | 17. Nov. | Dienstag, 17. November"},
        {"pt_BR", "17 de novembro | 17 de nov. | terça-feira, 17 de novembro"},
        {"hu_HU", "november 17. | nov. 17. | november 17., kedd"},
        {"lv_LV", "17. novembris | 17. nov. | otrdiena, 17. novembris"},
        {"ja_JP", "11月17日 | 11月17日 | 11月17日火曜日"},
    };
    // Already the 17th where the user is.
    const Instant t = at("2026-11-16T20:00:00Z");
    for (const Case& c : cases) {
        const Calendar calendar("Asia/Tokyo", c.locale);
        EXPECT_EQ(calendar.formatDate(t) + " | " + calendar.formatDateShort(t) + " | " +
                      calendar.formatDateWithWeekday(t),
                  c.dates);
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
    EXPECT_LT(english.compare("äpple", "Zebra"), 0);
    EXPECT_GT(swedish.compare("äpple", "zebra"), 0);
    struct Case {
        const char* text;
        const char* part;
        bool isFound;
    };
    const Case cases[] = {
        {"Have a Café break", "CAFE B", true},
        {"Cafe\u0301", "café", true},
        {"Straße", "STRASSE", true},
        {"Water", "", true},
        {"", "water", false},
        {"Water", "wine", false},
    };
    for (const Case& c : cases)
        EXPECT_EQ(english.containsFolded(c.text, c.part), c.isFound) << c.text << " / " << c.part;
}

TEST(CalendarTest, ReadsAndWritesIso8601) {
    const char* good[][2] = {
        {"2026-03-02T08:15:30+01:30", "2026-03-02T06:45:30Z"},
        {"2026-03-01T23:15:30-02:00", "2026-03-02T01:15:30Z"},
        {"2024-02-29T00:00:00Z", "2024-02-29T00:00:00Z"},
        {"1969-12-31T23:59:59.9Z", "1969-12-31T23:59:59.900000Z"},
        {"2026-03-02T08:15:30.0000019+00:30", "2026-03-02T07:45:30.000001Z"},
        {"0001-01-01T00:00:00.000000Z", "0001-01-01T00:00:00Z"},
        {"9999-12-31T22:59:59-01:00", "9999-12-31T23:59:59Z"},
    };
    for (const auto& [text, expected] : good)
        EXPECT_EQ(formatIso8601Exactly(at(text)), expected);
    EXPECT_EQ(formatIso8601(Instant(Duration(-1))), "1969-12-31T23:59:59Z");
    for (const char* bad :
         {"", "2026-03-02", "2026-03-02T08:15:30", "2026-03-02 08:15:30Z", "2026-02-29T08:15:30Z",
          "2026-13-02T08:15:30Z", "2026-03-02T24:00:00Z", "2026-03-02T08:60:00Z",
          "2026-03-02T08:15:30Zulu", "2026-03-02T08:15:30+0130", "2026-03-02T08:15:30+25:00",
          "+026-03-02T08:15:30Z", "2026-03-02T08:15:30.Z", "2026-03-02T08:15:30,5Z",
          "0001-01-01T00:00:00+00:01", "9999-12-31T23:59:59.000001Z"})
        EXPECT_FALSE(parseIso8601(bad)) << bad;
}

}  // namespace
}  // namespace tendel

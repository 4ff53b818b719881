#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "base/Instant.h"
#include "base/Iso8601.h"

namespace tendel {

// A date without a time: whole days since 1970-01-01 in the Gregorian calendar.
enum class CivilDay : int {};

// One calendar day as a stretch of time, start inclusive, end exclusive. 24 hours long on most
// days; the days of a zone follow one another without gap or overlap.
struct DayInterval {
    CivilDay day{};
    Instant start;
    Instant end;
    int weekday = 1;  // 1 = Sunday … 7 = Saturday
    // Set when the whole day has one offset from UTC (no clock change inside it): local minus UTC.
    std::optional<Duration> uniformOffset;

    bool contains(Instant t) const { return start <= t && t < end; }
};

struct LocalTime {
    int hour = 0;    // 0–23
    int minute = 0;  // 0–59
    int second = 0;  // 0–59
};

// The user's calendar: a time zone and a locale over ICU. Every question has an answer in every
// zone of the tz database: on days of 23, 25 or 47 hours, where midnight does not exist, and where
// a day was skipped. A day starts at the first moment at which the local date has reached it, so a
// clock set back across midnight does not bring yesterday back. Main thread only.
class Calendar {
public:
    // `zone` is a tz database name ("Europe/Berlin"); unknown ones are UTC. `locale` is an ICU or
    // POSIX one ("de_DE", "de_DE.UTF-8"); "C", "POSIX" and "" speak English with a 24-hour clock.
    Calendar(std::string_view zone, std::string_view locale);
    // The computer's zone (TZ, else its setting) and the user's locale (LC_ALL, LC_TIME, LANG).
    static Calendar system();
    Calendar(Calendar&&) noexcept;
    Calendar& operator=(Calendar&&) noexcept;
    ~Calendar();

    void setZone(std::string_view zone);
    // Reads the computer's zone again.
    void useSystemZone();
    std::string zone() const;

    // The day that contains `t`, and a day by its date. A date that the zone skipped answers the
    // next existing day.
    DayInterval day(Instant t) const;
    DayInterval day(CivilDay date) const;
    DayInterval dayAfter(const DayInterval& day) const {
        return this->day(CivilDay{int(day.day) + 1});
    }
    Instant startOfDay(Instant t) const { return day(t).start; }
    // The day `count` calendar days after (or before) `day`.
    DayInterval adding(int count, const DayInterval& day) const {
        return this->day(CivilDay{int(day.day) + count});
    }
    // hour:minute:00 on that day. A time that the day skips answers the next one that exists, a
    // repeated one its first occurrence.
    Instant time(const DayInterval& day, int hour, int minute) const;

    // What a clock on the wall shows at `t`.
    LocalTime localTime(Instant t) const;
    // The next moment after `t` at which a clock shows second 0.
    Instant nextMinute(Instant t) const;

    // The time of day in the user's style: "09:00", "9:00 AM".
    std::string formatTime(Instant t) const;
    std::string formatTime(int hour, int minute) const;
    // "Mon"; "Monday".
    std::string formatWeekdayShort(Instant t) const;
    std::string formatWeekday(Instant t) const;
    // The date without its year, in the user's order: "17 November"; "17 Nov"; "Tuesday, 17
    // November".
    std::string formatDate(Instant t) const;
    std::string formatDateShort(Instant t) const;
    std::string formatDateWithWeekday(Instant t) const;
    // The weekday by its number (1 = Sunday), and the number of the locale's first day of the week.
    std::string weekdayName(int weekday) const;
    int firstWeekday() const;

    // Order of two texts as a person expects: by the locale, numbers inside by their value. <0, 0,
    // >0.
    int compare(std::string_view a, std::string_view b) const;
    // Whether `text` holds `part`, not regarding case and accents, by the locale.
    bool containsFolded(std::string_view text, std::string_view part) const;

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tendel

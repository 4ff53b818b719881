#include "base/Iso8601.h"

#include <cstdio>

namespace tendel {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;
using std::chrono::minutes;

std::string formatIso8601(Instant t) {
    const auto date = floor<days>(t);
    const std::chrono::year_month_day ymd(date);
    const std::chrono::hh_mm_ss clock(floor<std::chrono::seconds>(t - date));
    char text[40];
    std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ", int(ymd.year()),
                  unsigned(ymd.month()), unsigned(ymd.day()), int(clock.hours().count()),
                  int(clock.minutes().count()), int(clock.seconds().count()));
    return text;
}

std::optional<Instant> parseIso8601(std::string_view text) {
    // Takes the digits that `form` asks for with 0; its other characters stand for themselves.
    const auto take = [&text](std::string_view form) -> std::optional<int> {
        if (text.size() < form.size()) return std::nullopt;
        int number = 0;
        for (std::size_t i = 0; i < form.size(); ++i) {
            const char c = text[i];
            if (form[i] != '0') {
                if (c != form[i]) return std::nullopt;
            } else if (c < '0' || c > '9') {
                return std::nullopt;
            } else {
                number = number * 10 + (c - '0');
            }
        }
        text.remove_prefix(form.size());
        return number;
    };

    const auto year = take("0000"), month = take("-00"), day = take("-00"), hour = take("T00"),
               minute = take(":00"), second = take(":00");
    if (!year || !month || !day || !hour || !minute || !second) return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
    const Instant local = std::chrono::sys_days(date) + hours(*hour) + minutes(*minute) +
                          std::chrono::seconds(*second);
    if (text == "Z") return local;

    const int sign = text.starts_with('-') ? -1 : 1;
    const auto offsetHours = take(sign < 0 ? "-00" : "+00"), offsetMinutes = take(":00");
    if (!offsetHours || !offsetMinutes || !text.empty() || *offsetHours > 23 || *offsetMinutes > 59)
        return std::nullopt;
    return local - sign * (hours(*offsetHours) + minutes(*offsetMinutes));
}

}  // namespace tendel

#include "base/Iso8601.h"

namespace tendel {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;
using std::chrono::minutes;

namespace {

// `form` with its zeros replaced by the digits of `number`, which has no more than there are.
void append(std::string& text, std::string_view form, std::int64_t number) {
    text += form;
    for (auto c = text.rbegin(); c != text.rbegin() + static_cast<std::ptrdiff_t>(form.size());
         ++c) {
        if (*c != '0') continue;
        *c = static_cast<char>('0' + number % 10);
        number /= 10;
    }
}

std::string withoutZone(Instant t) {
    const auto date = floor<days>(t);
    const std::chrono::year_month_day ymd(date);
    const std::chrono::hh_mm_ss clock(floor<std::chrono::seconds>(t - date));
    std::string text;
    text.reserve(28);
    append(text, "0000", int(ymd.year()));
    append(text, "-00", unsigned(ymd.month()));
    append(text, "-00", unsigned(ymd.day()));
    append(text, "T00", clock.hours().count());
    append(text, ":00", clock.minutes().count());
    append(text, ":00", clock.seconds().count());
    return text;
}

bool isDigit(char c) {
    return '0' <= c && c <= '9';
}

// Takes a point and digits from the front; nothing when a point has no digits behind it.
std::optional<Duration> takeFraction(std::string_view& text) {
    Duration fraction{0}, place{100'000};
    if (!text.starts_with('.')) return fraction;
    text.remove_prefix(1);
    if (text.empty() || !isDigit(text.front())) return std::nullopt;
    for (; !text.empty() && isDigit(text.front()); text.remove_prefix(1), place /= 10)
        fraction += (text.front() - '0') * place;
    return fraction;
}

}  // namespace

std::string formatIso8601(Instant t) {
    return withoutZone(t) + 'Z';
}

std::string formatIso8601Exactly(Instant t) {
    std::string text = withoutZone(t);
    const Duration fraction = t - floor<std::chrono::seconds>(t);
    if (fraction.count() != 0) append(text, ".000000", fraction.count());
    text += 'Z';
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
            } else if (!isDigit(c)) {
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
    const auto fraction = takeFraction(text);
    if (!fraction) return std::nullopt;
    const std::chrono::year_month_day date(std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day)));
    if (!date.ok() || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
    const Instant local = std::chrono::sys_days(date) + hours(*hour) + minutes(*minute) +
                          std::chrono::seconds(*second) + *fraction;

    Duration offset{0};
    if (text != "Z") {
        const int sign = text.starts_with('-') ? -1 : 1;
        const auto offsetHours = take(sign < 0 ? "-00" : "+00"), offsetMinutes = take(":00");
        if (!offsetHours || !offsetMinutes || !text.empty() || *offsetHours > 23 ||
            *offsetMinutes > 59)
            return std::nullopt;
        offset = sign * (hours(*offsetHours) + minutes(*offsetMinutes));
    }
    const Instant t = local - offset;
    if (t < earliestIso8601 || latestIso8601 < t) return std::nullopt;
    return t;
}

}  // namespace tendel

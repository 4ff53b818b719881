#include "base/Calendar.h"

#include <unicode/basictz.h>
#include <unicode/calendar.h>
#include <unicode/coll.h>
#include <unicode/smpdtfmt.h>
#include <unicode/stsearch.h>
#include <unicode/tblcoll.h>
#include <unicode/timezone.h>
#include <unicode/tztrans.h>

#include <algorithm>
#include <array>
#include <cassert>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <vector>

#include "base/Log.h"

namespace tendel {

namespace {

using std::chrono::days;
using std::chrono::floor;
using std::chrono::hours;
using std::chrono::milliseconds;
using std::chrono::minutes;

// A time on a wall clock, counted as if its zone were UTC.
using LocalInstant = std::chrono::local_time<Duration>;

// A stretch of time with one offset of the zone, as long as it can be.
struct Stretch {
    Instant start;
    Instant end;
    Duration offset{};  // local minus UTC

    LocalInstant local(Instant t) const { return LocalInstant(t.time_since_epoch() + offset); }
    Instant instant(LocalInstant local) const { return Instant(local.time_since_epoch() - offset); }
};

// Beyond these, what is asked about is no date of a computer's user; far enough from the limits of
// Instant for every sum below.
constexpr Instant earliest{-days(36'500'000)};
constexpr Instant latest{days(36'500'000)};

// No zone was ever further from UTC than 16 hours; a date cannot have begun earlier than this
// before its midnight in UTC.
constexpr Duration longestLead = hours(30);

LocalInstant midnight(CivilDay date) {
    return LocalInstant(days(int(date)));
}

CivilDay following(CivilDay date) {
    return CivilDay{int(date) + 1};
}

int weekdayOf(CivilDay date) {
    return static_cast<int>(
               std::chrono::weekday(std::chrono::sys_days(days(int(date)))).c_encoding()) +
           1;
}

icu::UnicodeString toUnicode(std::string_view text) {
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<int>(text.size())});
}

std::string toUtf8(const icu::UnicodeString& text) {
    std::string utf8;
    text.toUTF8String(utf8);
    return utf8;
}

UDate toUDate(Instant t) {
    return static_cast<UDate>(floor<milliseconds>(t.time_since_epoch()).count());
}

Instant toInstant(UDate date) {
    return Instant(milliseconds(static_cast<std::int64_t>(date)));
}

icu::Locale localeNamed(std::string_view name) {
    const auto language = name.substr(0, name.find_first_of(".@"));
    // The computer's neutral locale: English, weeks from Monday and a clock of 24 hours.
    if (language.empty() || language == "C" || language == "POSIX") return icu::Locale("en_150");
    return icu::Locale::createCanonical(std::string(name).c_str());
}

std::unique_ptr<icu::BasicTimeZone> knownZone(std::string_view name) {
    std::unique_ptr<icu::TimeZone> made(icu::TimeZone::createTimeZone(toUnicode(name)));
    icu::UnicodeString id;
    if (!made || made->getID(id) == icu::UnicodeString(UCAL_UNKNOWN_ZONE_ID)) return nullptr;
    auto* basic = dynamic_cast<icu::BasicTimeZone*>(made.get());
    if (basic) static_cast<void>(made.release());
    return std::unique_ptr<icu::BasicTimeZone>(basic);
}

std::string systemZoneName() {
    if (const char* chosen = std::getenv("TZ")) {
        std::string_view name(chosen);
        if (name.starts_with(':')) name.remove_prefix(1);
        if (name.empty()) return "UTC";
        constexpr std::string_view folder = "/usr/share/zoneinfo/";
        if (name.starts_with(folder)) name.remove_prefix(folder.size());
        if (knownZone(name)) return std::string(name);
    }
    const std::unique_ptr<icu::TimeZone> host(icu::TimeZone::detectHostTimeZone());
    icu::UnicodeString name;
    return host ? toUtf8(host->getID(name)) : "UTC";
}

std::string systemLocaleName() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"})
        if (const char* value = std::getenv(variable); value && *value) return value;
    return "C";
}

// `sinceEpoch` as a clock in UTC shows it: the formats know nothing of the zone.
std::string inWords(const icu::SimpleDateFormat& format, Duration sinceEpoch) {
    icu::UnicodeString text;
    return toUtf8(format.format(toUDate(Instant(sinceEpoch)), text));
}

// `pattern` without the year and what links it to the rest.
icu::UnicodeString withoutYear(const icu::UnicodeString& pattern) {
    struct Field {
        char16_t letter;
        int start;
        int end;
    };
    std::vector<Field> fields;
    bool isQuoted = false;
    for (int i = 0; i < pattern.length(); ++i) {
        const char16_t c = pattern[i];
        if (c == u'\'') isQuoted = !isQuoted;
        if (isQuoted || !((c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'))) continue;
        if (!fields.empty() && fields.back().letter == c && fields.back().end == i)
            ++fields.back().end;
        else
            fields.push_back({c, i, i + 1});
    }
    const auto year = std::ranges::find(fields, u'y', &Field::letter);
    if (year == fields.end() || fields.size() == 1) return pattern;
    icu::UnicodeString rest = pattern;
    // A year at the end takes with it what stands before it, any other what follows.
    if (year + 1 == fields.end())
        rest.truncate((year - 1)->end);
    else
        rest.remove(year->start, (year + 1)->start - year->start);
    return rest;
}

}  // namespace

struct Calendar::State {
    icu::Locale locale;
    std::unique_ptr<icu::BasicTimeZone> zone;
    // What is known of the zone so far, by the start of each stretch.
    std::map<Instant, Stretch> stretches;
    std::array<DayInterval, 2> lastDays{};
    std::size_t oldestDay = 0;

    // Made on first use: a look for the next reminder needs none of them.
    std::unique_ptr<icu::SimpleDateFormat> timeFormat, shortWeekdayFormat, weekdayFormat;
    std::unique_ptr<icu::SimpleDateFormat> dateFormat, shortDateFormat, datedWeekdayFormat;
    std::unique_ptr<icu::Collator> order;
    std::unique_ptr<icu::RuleBasedCollator> likeness;

    const Stretch& stretchAt(Instant t);
    Instant start(CivilDay date);
    DayInterval existing(CivilDay date);
    std::unique_ptr<icu::SimpleDateFormat> makeTimeFormat() const;
    icu::UnicodeString datePattern(icu::DateFormat::EStyle style) const;
    std::unique_ptr<icu::SimpleDateFormat> makeFormat(const icu::UnicodeString& pattern) const;
    Duration offsetAt(UDate date) const;
};

Duration Calendar::State::offsetAt(UDate date) const {
    int standard = 0, saving = 0;
    UErrorCode status = U_ZERO_ERROR;
    zone->getOffset(date, false, standard, saving, status);
    assert(U_SUCCESS(status));
    return milliseconds(standard + saving);
}

const Stretch& Calendar::State::stretchAt(Instant t) {
    const auto after = stretches.upper_bound(t);
    if (after != stretches.begin() && t < std::prev(after)->second.end)
        return std::prev(after)->second;

    const UDate date = toUDate(t);
    const Duration offset = offsetAt(date);
    // The zone also tells of changes that leave the clock as it is (a new name, or summer time
    // made standard); those do not end a stretch.
    icu::TimeZoneTransition change;
    Instant begin = Instant::min();
    bool isFound = zone->getPreviousTransition(date, true, change);
    while (isFound && offsetAt(change.getTime() - 1) == offset)
        isFound = zone->getPreviousTransition(change.getTime(), false, change);
    if (isFound) begin = toInstant(change.getTime());
    Instant end = Instant::max();
    isFound = zone->getNextTransition(date, false, change);
    while (isFound && offsetAt(change.getTime()) == offset)
        isFound = zone->getNextTransition(change.getTime(), false, change);
    if (isFound) end = toInstant(change.getTime());

    constexpr std::size_t mostKept = 256;  // a century of them
    if (stretches.size() >= mostKept) stretches.clear();
    return stretches.insert_or_assign(begin, Stretch{begin, end, offset}).first->second;
}

// The first moment at which the local date is `date` or later.
Instant Calendar::State::start(CivilDay date) {
    Instant from = Instant(midnight(date).time_since_epoch()) - longestLead;
    for (;;) {
        const Stretch& stretch = stretchAt(from);
        const Instant reached = std::max(from, stretch.instant(midnight(date)));
        if (reached < stretch.end) return reached;
        from = stretch.end;
    }
}

DayInterval Calendar::State::existing(CivilDay date) {
    for (const DayInterval& known : lastDays)
        if (known.day == date && known.start < known.end) return known;

    DayInterval day;
    day.day = date;
    day.start = start(date);
    day.end = start(following(date));
    while (day.start == day.end) {
        day.day = following(day.day);
        day.end = start(following(day.day));
    }
    day.weekday = weekdayOf(day.day);
    if (const Stretch& stretch = stretchAt(day.start); day.end <= stretch.end)
        day.uniformOffset = stretch.offset;
    lastDays[oldestDay] = day;
    oldestDay = (oldestDay + 1) % lastDays.size();
    return day;
}

// The locale's way to write a time, not by a skeleton: the generator for those touches more of ICU
// than all the rest together.
std::unique_ptr<icu::SimpleDateFormat> Calendar::State::makeTimeFormat() const {
    const std::unique_ptr<icu::DateFormat> any(
        icu::DateFormat::createTimeInstance(icu::DateFormat::kShort, locale));
    icu::UnicodeString pattern;
    const auto* format = dynamic_cast<icu::SimpleDateFormat*>(any.get());
    return makeFormat(format ? format->toPattern(pattern) : icu::UnicodeString("HH:mm"));
}

icu::UnicodeString Calendar::State::datePattern(icu::DateFormat::EStyle style) const {
    const std::unique_ptr<icu::DateFormat> any(icu::DateFormat::createDateInstance(style, locale));
    icu::UnicodeString pattern;
    const auto* format = dynamic_cast<icu::SimpleDateFormat*>(any.get());
    return format ? withoutYear(format->toPattern(pattern)) : icu::UnicodeString("d MMMM");
}

std::unique_ptr<icu::SimpleDateFormat> Calendar::State::makeFormat(
    const icu::UnicodeString& pattern) const {
    UErrorCode status = U_ZERO_ERROR;
    auto format = std::make_unique<icu::SimpleDateFormat>(pattern, locale, status);
    if (U_FAILURE(status)) throw std::runtime_error("ICU has no data for date formats");
    format->setTimeZone(*icu::TimeZone::getGMT());  // what is formatted is local already
    return format;
}

Calendar::Calendar(std::string_view zone, std::string_view locale)
    : state_(std::make_unique<State>()) {
    state_->locale = localeNamed(locale);
    setZone(zone);
}

Calendar Calendar::system() {
    return Calendar(systemZoneName(), systemLocaleName());
}

Calendar::Calendar(Calendar&&) noexcept = default;
Calendar& Calendar::operator=(Calendar&&) noexcept = default;
Calendar::~Calendar() = default;

void Calendar::setZone(std::string_view zone) {
    state_->zone = knownZone(zone);
    if (!state_->zone) {
        log(LogLevel::warning, "calendar",
            "Couldn't find the time zone \"" + std::string(zone) + "\"; using UTC");
        state_->zone = knownZone("UTC");
        if (!state_->zone) throw std::runtime_error("ICU has no time zone data");
    }
    state_->stretches.clear();
    state_->lastDays = {};
}

void Calendar::useSystemZone() {
    setZone(systemZoneName());
}

std::string Calendar::zone() const {
    icu::UnicodeString name;
    return toUtf8(state_->zone->getID(name));
}

DayInterval Calendar::day(Instant t) const {
    for (const DayInterval& known : state_->lastDays)
        if (known.contains(t)) return known;
    const Instant within = std::clamp(t, earliest, latest);
    const auto date = floor<days>(state_->stretchAt(within).local(within));
    DayInterval day = state_->existing(CivilDay{static_cast<int>(date.time_since_epoch().count())});
    // Where the clock was set back over midnight, the date is still yesterday's for a while.
    while (day.end <= within)
        day = state_->existing(following(day.day));
    return day;
}

DayInterval Calendar::day(CivilDay date) const {
    return state_->existing(date);
}

Instant Calendar::time(const DayInterval& day, int hour, int minute) const {
    const LocalInstant wanted = midnight(day.day) + hours(hour) + minutes(minute);
    // At the end of the day every time of it has passed, also one in a gap before midnight.
    if (day.uniformOffset)
        return std::clamp(Instant(wanted.time_since_epoch() - *day.uniformOffset), day.start,
                          day.end);
    Instant from = day.start;
    while (from < day.end) {
        const Stretch& stretch = state_->stretchAt(from);
        const Instant reached = std::max(from, stretch.instant(wanted));
        if (reached < stretch.end) return std::min(reached, day.end);
        from = stretch.end;
    }
    return day.end;
}

LocalTime Calendar::localTime(Instant t) const {
    const Instant within = std::clamp(t, earliest, latest);
    const LocalInstant local = state_->stretchAt(within).local(within);
    const std::chrono::hh_mm_ss clock(floor<std::chrono::seconds>(local - floor<days>(local)));
    return {static_cast<int>(clock.hours().count()), static_cast<int>(clock.minutes().count()),
            static_cast<int>(clock.seconds().count())};
}

Instant Calendar::nextMinute(Instant t) const {
    Instant from = std::clamp(t, earliest, latest) + Duration(1);
    for (;;) {
        const Stretch& stretch = state_->stretchAt(from);
        const Instant whole = stretch.instant(std::chrono::ceil<minutes>(stretch.local(from)));
        if (whole < stretch.end) return whole;
        from = stretch.end;
    }
}

std::string Calendar::formatTime(Instant t) const {
    const LocalTime local = localTime(t);
    return formatTime(local.hour, local.minute);
}

std::string Calendar::formatTime(int hour, int minute) const {
    auto& format = state_->timeFormat;
    if (!format) format = state_->makeTimeFormat();
    return inWords(*format, hours(hour) + minutes(minute));
}

std::string Calendar::formatWeekdayShort(Instant t) const {
    auto& format = state_->shortWeekdayFormat;
    if (!format) format = state_->makeFormat("ccc");
    return inWords(*format, days(int(day(t).day)));
}

std::string Calendar::formatWeekday(Instant t) const {
    return weekdayName(day(t).weekday);
}

std::string Calendar::formatDate(Instant t) const {
    auto& format = state_->dateFormat;
    if (!format) format = state_->makeFormat(state_->datePattern(icu::DateFormat::kLong));
    return inWords(*format, days(int(day(t).day)));
}

std::string Calendar::formatDateShort(Instant t) const {
    auto& format = state_->shortDateFormat;
    if (!format) {
        icu::UnicodeString pattern = state_->datePattern(icu::DateFormat::kLong);
        format = state_->makeFormat(pattern.findAndReplace("MMMM", "MMM"));
    }
    return inWords(*format, days(int(day(t).day)));
}

std::string Calendar::formatDateWithWeekday(Instant t) const {
    auto& format = state_->datedWeekdayFormat;
    if (!format) format = state_->makeFormat(state_->datePattern(icu::DateFormat::kFull));
    return inWords(*format, days(int(day(t).day)));
}

std::string Calendar::weekdayName(int weekday) const {
    constexpr int firstSunday = 3;  // 1970-01-04
    auto& format = state_->weekdayFormat;
    if (!format) format = state_->makeFormat("cccc");
    return inWords(*format, days(firstSunday + weekday - 1));
}

int Calendar::firstWeekday() const {
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::Calendar> calendar(
        icu::Calendar::createInstance(state_->locale, status));
    if (U_FAILURE(status)) return 1;
    const auto first = calendar->getFirstDayOfWeek(status);
    return U_SUCCESS(status) ? static_cast<int>(first) : 1;
}

int Calendar::compare(std::string_view a, std::string_view b) const {
    UErrorCode status = U_ZERO_ERROR;
    if (!state_->order) {
        state_->order.reset(icu::Collator::createInstance(state_->locale, status));
        if (U_SUCCESS(status)) state_->order->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
        if (U_FAILURE(status)) throw std::runtime_error("ICU has no data to order texts");
    }
    return state_->order->compareUTF8({a.data(), static_cast<int>(a.size())},
                                      {b.data(), static_cast<int>(b.size())}, status);
}

bool Calendar::containsFolded(std::string_view text, std::string_view part) const {
    if (part.empty()) return true;
    if (text.empty()) return false;
    UErrorCode status = U_ZERO_ERROR;
    if (!state_->likeness) {
        std::unique_ptr<icu::Collator> made(icu::Collator::createInstance(state_->locale, status));
        auto* rules = dynamic_cast<icu::RuleBasedCollator*>(made.get());
        if (U_FAILURE(status) || !rules) throw std::runtime_error("ICU has no data to search");
        static_cast<void>(made.release());
        state_->likeness.reset(rules);
        rules->setStrength(icu::Collator::PRIMARY);
        rules->setAttribute(UCOL_NORMALIZATION_MODE, UCOL_ON, status);
    }
    icu::StringSearch search(toUnicode(part), toUnicode(text), state_->likeness.get(), nullptr,
                             status);
    const int found = search.first(status);
    return U_SUCCESS(status) && found != USEARCH_DONE;
}

}  // namespace tendel

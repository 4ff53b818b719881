#include <gtest/gtest.h>
#include <unicode/timezone.h>

#include <array>
#include <memory>
#include <random>
#include <sstream>
#include <vector>

#include "reminders/ReminderSchedule.h"

// Fire times found by walking minute by minute along a clock on the wall, slowly and without
// arithmetic on days, held against those that ScheduleSearch computes: many reminders, hours, zones
// and moments, most of them near a change of the clock.

namespace tendel {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;

constexpr int dayMinutes = 24 * 60;

// What follows a seed is the same on every computer, unlike with the standard's distributions.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : source_(seed) {}
    int below(int count) { return static_cast<int>(source_() % static_cast<unsigned>(count)); }
    int between(int low, int high) { return low + below(high - low + 1); }
    bool chance(int percent) { return below(100) < percent; }
    template <class List>
    auto oneOf(const List& list) {
        return list[static_cast<std::size_t>(below(static_cast<int>(std::size(list))))];
    }

private:
    std::mt19937_64 source_;
};

// The only thing that is asked of ICU: local minus UTC at a moment.
class Offsets {
public:
    explicit Offsets(const char* zone) : zone_(icu::TimeZone::createTimeZone(zone)) {}

    minutes at(Instant t) const {
        int standard = 0, saving = 0;
        UErrorCode status = U_ZERO_ERROR;
        zone_->getOffset(static_cast<UDate>(t.time_since_epoch().count()) / 1000.0, false, standard,
                         saving, status);
        if ((standard + saving) % 60'000 != 0) ADD_FAILURE() << "no whole minutes";
        return minutes((standard + saving) / 60'000);
    }

private:
    std::unique_ptr<icu::TimeZone> zone_;
};

// A few weeks of a clock on the wall, minute by minute from `start`; minutes are counted from
// there.
class WallClock {
public:
    static constexpr int length = 31 * dayMinutes;

    WallClock(const Offsets& offsets, Instant start) : start_(start) {
        const int utc =
            static_cast<int>(std::chrono::floor<minutes>(start).time_since_epoch() / minutes(1));
        for (int m = 0; m < length; ++m) {
            const int local = utc + m + static_cast<int>(offsets.at(instant(m)).count());
            shown_.push_back(local);
            // A date that came once does not go back to the one before.
            const int date = local / dayMinutes;
            dates_.push_back(m > 0 ? std::max(dates_.back(), date) : date);
        }
    }

    Instant instant(int m) const { return start_ + minutes(m); }
    int minuteOf(Instant t) const { return static_cast<int>((t - start_) / minutes(1)); }
    int dateAt(int m) const { return dates_[index(m)]; }
    bool isNewDay(int m) const { return m == 0 || dateAt(m) != dateAt(m - 1); }
    // Whether the clock shows this time of minute m's day, or a later one.
    bool shows(int m, TimeOfDay time) const {
        return shown_[index(m)] >= dateAt(m) * dayMinutes + time.hour * 60 + time.minute;
    }
    // 1 = Sunday; 1970-01-01 was a Thursday.
    int weekdayAt(int m) const { return (dateAt(m) + 4) % 7 + 1; }

private:
    static std::size_t index(int m) { return static_cast<std::size_t>(m); }

    Instant start_;
    std::vector<int> shown_;  // the local date and time in minutes
    std::vector<int> dates_;  // the day that each minute belongs to
};

// The working hours marked on the minutes of a wall clock.
class WorkTime {
public:
    WorkTime(const WallClock& clock, const WorkingHours& workingHours) : clock_(clock) {
        bool hasStarted = true, hasEnded = true, wasWorkday = false;
        for (int m = 0; m < WallClock::length; ++m) {
            Minute minute;
            const bool isWorkday = workingHours.workdays.contains(clock.weekdayAt(m));
            if (clock.isNewDay(m)) {
                // What the day before did not reach, because its end was skipped, comes now.
                minute.startsLate = !hasStarted && wasWorkday;
                hasStarted = hasEnded = false;
                wasWorkday = isWorkday;
            }
            if (!hasStarted && clock.shows(m, workingHours.start)) {
                hasStarted = true;
                minute.starts = isWorkday;
            }
            hasEnded |= clock.shows(m, workingHours.end);
            minute.isWork = isWorkday && hasStarted && !hasEnded;
            minutes_.push_back(minute);
        }
    }

    bool contains(int m) const { return at(m).isWork; }

    // When work starts on that day or one of the seven dates after it; a date that does not exist
    // stands for the next one that does.
    std::optional<int> nextStart(int closed) const {
        const int lastDate = clock_.dateAt(closed) + 7;
        int dateBefore = 0;
        for (int m = closed; m < WallClock::length; ++m) {
            if (clock_.isNewDay(m)) dateBefore = clock_.dateAt(m - 1);
            const bool isOver = clock_.dateAt(m) > lastDate && dateBefore >= lastDate;
            if (at(m).isWork && (at(m).startsLate || (at(m).starts && !isOver))) return m;
            if (isOver) return std::nullopt;
        }
        return std::nullopt;
    }

private:
    struct Minute {
        bool isWork = false;
        bool starts = false;
        bool startsLate = false;  // the work of the day before
    };
    const Minute& at(int m) const { return minutes_[static_cast<std::size_t>(m)]; }

    const WallClock& clock_;
    std::vector<Minute> minutes_;
};

struct Answer {
    std::optional<Instant> chain;  // the first time of the chain after a moment
    std::optional<Instant> fires;  // the first one inside the window
};

// Walks from some days before `t` to the first chain time after it at which the window is open;
// there is none when it is eight days away, or when the window does not open on the days that are
// looked at from a closed time on.
Answer walk(const WallClock& clock, const WorkTime& work, const Reminder& reminder, Instant t) {
    const bool isForWork = reminder.kind() == ReminderKind::work;
    const int interval = std::max(reminder.intervalMinutes, 1);
    Answer answer;
    bool hasStarted = true;
    const int begin = clock.minuteOf(t) - 3 * dayMinutes;
    int first = begin, opening = 0;
    for (int m = begin; m < WallClock::length; ++m) {
        bool isChainTime = false;
        if (clock.isNewDay(m)) {
            isChainTime = !hasStarted;  // as above
            hasStarted = false;
        }
        if (!hasStarted && clock.shows(m, reminder.start())) {
            hasStarted = true;
            first = m;
        }
        if (hasStarted && (m - first) % interval == 0) isChainTime = true;

        const Instant now = clock.instant(m);
        if (!isChainTime || now <= t) continue;
        if (!answer.chain) answer.chain = now;
        if (now >= t + days(8)) return answer;
        if (work.contains(m) == isForWork) {
            answer.fires = now;
            return answer;
        }
        if (isForWork && m >= opening) {
            const auto found = work.nextStart(m);
            if (!found) return answer;
            opening = *found;
        }
    }
    ADD_FAILURE() << "the wall clock is too short";
    return answer;
}

constexpr const char* zones[] = {
    "UTC", "Europe/Berlin", "Europe/London", "Europe/Dublin", "America/New_York", "Asia/Kolkata",
    // At midnight or just after it, forwards and back.
    "America/Sao_Paulo", "America/Havana", "America/Asuncion", "America/Santiago",
    "America/St_Johns", "America/Goose_Bay", "America/Moncton", "Asia/Beirut", "Asia/Amman",
    "Asia/Gaza", "Asia/Tehran", "Africa/Cairo", "Atlantic/Azores", "America/Scoresbysund",
    // The last hour of a day is skipped.
    "America/Godthab", "Asia/Dhaka",
    // By other amounts than an hour.
    "Australia/Lord_Howe", "Pacific/Chatham", "America/Caracas", "Asia/Pyongyang", "Asia/Kathmandu",
    "Antarctica/Troll", "Antarctica/Casey", "Africa/Casablanca",
    // A day that does not exist.
    "Pacific/Apia", "Pacific/Fakaofo", "Pacific/Enderbury", "Pacific/Kiritimati",
    "Pacific/Kwajalein"};

constexpr Instant firstMoment{days(5 * 365 + 1)};  // 1975
constexpr Instant lastMoment{days(67 * 365)};

std::vector<Instant> changesOf(const Offsets& offsets) {
    std::vector<Instant> found;
    for (Instant t = firstMoment; t < lastMoment; t += hours(6)) {
        if (offsets.at(t) == offsets.at(t + hours(6))) continue;
        Instant change = t;
        while (offsets.at(change) == offsets.at(t))
            change += minutes(1);
        found.push_back(change);
    }
    return found;
}

TimeOfDay anyTime(Dice& dice) {
    constexpr std::array<TimeOfDay, 8> special{
        {{0, 0}, {0, 30}, {1, 0}, {2, 0}, {2, 30}, {23, 0}, {23, 30}, {23, 59}}};
    if (dice.chance(40)) return dice.oneOf(special);
    return {dice.below(24), dice.chance(50) ? 0 : dice.below(60)};
}

WorkingHours anyHours(Dice& dice) {
    WorkingHours made;
    if (dice.chance(20)) return made;
    if (dice.chance(20)) {
        // A short time once a week, which a chain easily steps over on the day of a clock change.
        made.start = {dice.below(6), dice.oneOf(std::array{0, 30})};
        made.end = {made.start.hour, made.start.minute + dice.between(1, 29)};
        made.workdays = {dice.chance(60) ? 1 : dice.between(1, 7)};
        return made;
    }
    made.start = anyTime(dice);
    made.end = anyTime(dice);
    // Hours that never are have few ways to go wrong.
    if (made.end < made.start && dice.chance(80)) std::swap(made.start, made.end);
    made.workdays.clear();
    const int kind = dice.below(10);
    for (int weekday = 1; weekday <= 7; ++weekday)
        if (kind == 0 || (kind < 7 && dice.chance(50))) made.workdays.insert(weekday);
    if (kind >= 7 && kind < 9) made.workdays.insert(dice.between(1, 7));
    return made;
}

Reminder anyReminder(Dice& dice) {
    constexpr std::array intervals{1, 7, 15, 30, 45, 60, 90, 120, 480, 720, 1440, 3000, 0, -5};
    Reminder made;
    made.setKind(dice.chance(60) ? ReminderKind::work : ReminderKind::private_);
    made.setStart(anyTime(dice));
    made.intervalMinutes = dice.chance(70) ? dice.oneOf(intervals) : dice.between(1, 1500);
    return made;
}

std::string shown(const std::optional<Instant>& t) {
    return t ? formatIso8601(*t) : "nothing";
}

std::string shown(const char* zone, const Reminder& reminder, const WorkingHours& workingHours,
                  Instant t) {
    std::ostringstream text;
    const auto time = [&](TimeOfDay of) { text << of.hour << ":" << of.minute; };
    text << zone << ", " << rawValue(reminder.kind()) << " from ";
    time(reminder.start());
    text << " every " << reminder.intervalMinutes << ", work ";
    time(workingHours.start);
    text << " to ";
    time(workingHours.end);
    text << " on";
    for (const int weekday : workingHours.workdays)
        text << " " << weekday;
    text << ", after " << formatIso8601(t) << " + "
         << (t - std::chrono::floor<std::chrono::seconds>(t)).count() << " us";
    return text.str();
}

TEST(ScheduleOracleTest, AgreesWithAWalkAlongTheWallClock) {
    constexpr int clocksOfAZone = 20, settingsOfAClock = 6, remindersOfASetting = 6;
    Dice dice(20'261'121);
    int cases = 0, fired = 0, changedMeanwhile = 0, differences = 0;
    for (const char* zone : zones) {
        const Offsets offsets(zone);
        const Calendar calendar(zone, "en");
        const auto changes = changesOf(offsets);
        for (int c = 0; c < clocksOfAZone; ++c) {
            const Instant anywhere = firstMoment + hours(dice.below(62 * 365 * 24));
            const Instant middle =
                changes.empty() || dice.chance(20) ? anywhere : dice.oneOf(changes);
            // The clock reaches from three days before the earliest moment that is asked about to
            // eight days of search, and a week and a day of openings, after the latest.
            const Instant latest = middle + days(2), earliest = middle - days(8);
            const WallClock clock(offsets, earliest - days(3));
            for (int h = 0; h < settingsOfAClock; ++h) {
                const WorkingHours workingHours = anyHours(dice);
                const WorkTime work(clock, workingHours);
                ScheduleSearch search(calendar, workingHours);
                for (int r = 0; r < remindersOfASetting; ++r) {
                    const Reminder reminder = anyReminder(dice);
                    // Most fire within hours, so most moments are hours before the change.
                    const int where = dice.below(10);
                    const int distance = where < 2   ? dice.between(-90, 90)
                                         : where < 7 ? dice.between(-dayMinutes, 6 * 60)
                                                     : dice.between(-8 * dayMinutes, 2880);
                    Instant t = middle + minutes(distance);
                    if (dice.chance(30)) t += std::chrono::seconds(dice.below(60));
                    if (dice.chance(20)) t += Duration(dice.between(-1, 1));
                    t = std::clamp(t, earliest, latest);
                    ++cases;

                    const Answer expected = walk(clock, work, reminder, t);
                    const Answer found{
                        .chain = search.nextFireDate(ReminderSchedule::of(reminder), t),
                        .fires = search.nextFireDate(reminder, t)};
                    if (expected.fires) {
                        ++fired;
                        changedMeanwhile += offsets.at(t) != offsets.at(*expected.fires);
                    }
                    if (found.fires == expected.fires && found.chain == expected.chain) continue;
                    if (++differences > 10) continue;
                    ADD_FAILURE() << shown(zone, reminder, workingHours, t) << "\n  walked to "
                                  << shown(expected.fires) << ", chain " << shown(expected.chain)
                                  << "\n  computed " << shown(found.fires) << ", chain "
                                  << shown(found.chain);
                }
            }
        }
    }
    EXPECT_EQ(differences, 0) << "of " << cases;
    EXPECT_GE(cases, 20'000);
    // The cases are worth something only when both answers and clock changes come up often.
    EXPECT_GT(fired, cases / 3);
    EXPECT_GT(cases - fired, cases / 20);
    EXPECT_GT(changedMeanwhile, cases / 20);
    RecordProperty("cases", cases);
    RecordProperty("fired", fired);
    RecordProperty("changedMeanwhile", changedMeanwhile);
}

}  // namespace
}  // namespace tendel

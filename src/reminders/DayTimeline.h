#pragma once

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Calendar.h"
#include "model/KeptReason.h"
#include "model/Reminder.h"
#include "model/WorkingHours.h"

namespace tendel {

class ReminderScheduler;
class Store;

// One day's alerts, past and to come.
struct DayTimeline {
    enum class State {
        done,
        missed,   // skipped, or hid itself unanswered
        snoozed,  //
        kept,     // fell due while it could not be shown, and waits to be
        showing,  // on the screen or behind what is
        coming,
    };
    static constexpr int states = 6;

    struct Mark {
        Instant at{};  // when it was, or is, due
        State state = State::coming;
        std::string title{};
        ReminderKind kind = ReminderKind::work;
        std::optional<Instant> respondedAt{};    // of done, missed and snoozed
        std::optional<KeptReason> keptReason{};  // of kept
        // How many alerts it stands for: on a day too full to list each, those of one state and
        // kind in one stretch of five minutes are one mark, named after the first.
        int count = 1;

        friend bool operator==(const Mark&, const Mark&) = default;
    };
    // An alert on the screen, or one that waits behind it.
    struct Shown {
        ReminderId reminder;
        Instant dueAt;
    };

    // A day with more alerts than this has marks that stand for several.
    static constexpr int mostListed = 5000;

    // The day that contains `now`: what history tells of it, what is kept and shown (of these only
    // what fell due today), and what the scheduler will fire if nothing is changed until midnight.
    static DayTimeline of(const Store& store, const ReminderScheduler& scheduler,
                          const WorkingHours& hours, const Calendar& calendar, Instant now,
                          std::span<const Shown> shown = {});

    // How many alerts are in that state.
    int count(State state) const;

    DayInterval day;
    Instant now;
    // The part of the day that work reminders may fire in; start == end on a day off.
    Instant workStart;
    Instant workEnd;
    std::vector<Mark> marks;  // by time, then by title
};

}  // namespace tendel

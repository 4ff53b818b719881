#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <variant>
#include <vector>

#include "base/Calendar.h"
#include "focus/FocusAlert.h"
#include "reminders/DayTimeline.h"
#include "reminders/Upcoming.h"

namespace tendel {

// An identifier made fresh for every queue entry; unique while the program runs.
enum class AlertId : std::uint64_t {};

// The alerts that are due but not answered: the one on the screen and those that wait behind it, in
// order. Records nothing itself: what an operation drops it returns, and the controller decides. A
// plain value; main thread only.
struct AlertQueue {
    struct Sample {
        friend bool operator==(Sample, Sample) = default;
    };

    struct Entry {
        // A due reminder, an announcement of the focus timer, or a preview from the settings.
        using Source = std::variant<ReminderId, FocusAlert, Sample>;

        AlertId id = newId();
        Source source{};
        std::string title{};    // empty for focus alerts
        std::string details{};  // empty for focus alerts
        Instant fireDate{};
        std::optional<int> durationSeconds{};  // of the timed break it offers; absent: none
        std::optional<Instant> breakEndsAt{};  // set while the break runs
        Instant waitingSince{};                // when it last started to wait
        bool skipsWhenAway = false;
        std::optional<Instant> missedAt{};
        std::optional<KeptReason> keptReason{};
        std::string systemImage{};
        std::optional<ExerciseAnimation> animation{};

        static AlertId newId();
        static Entry of(const Upcoming::Item& item, Instant fireDate, Instant now);
        static Entry of(const FocusAlert& alert, Instant fireDate);
        static Entry sample(const Upcoming::Item& item, Instant now);

        std::optional<ReminderId> reminderId() const;
        bool isFocus() const { return std::holds_alternative<FocusAlert>(source); }
        // The entry as the scheduler handed it over; nothing for focus alerts and samples.
        std::optional<Upcoming::Item> item() const;
        // Why it comes late, as a line in the alert.
        std::optional<std::string> notice(const Calendar& calendar) const;

        friend bool operator==(const Entry&, const Entry&) = default;
    };

    std::optional<Entry> current;
    std::vector<Entry> waiting;  // [0] is next

    bool isEmpty() const { return !current && waiting.empty(); }
    // The alert on the screen and those behind it, as far as reminders go.
    std::vector<DayTimeline::Shown> shownReminders() const;
    bool isBreakRunning() const { return current && current->breakEndsAt; }

    // Adds due entries: focus alerts go to the front, the others to the end. Returns those that are
    // superseded: a second firing of the alert on the screen, or the older one of the same source
    // that still waited.
    std::vector<Entry> enqueue(std::vector<Entry> entries);
    // Drops and returns the entries that have waited for more than five minutes.
    std::vector<Entry> removeStale(Instant now);
    // When the first waiting entry becomes stale, if nothing changes before.
    std::optional<Instant> nextStale() const;
    // The five minutes of every waiting entry count from `now`.
    void restartWaiting(Instant now);
    // Empties the queue; the current entry comes first.
    std::vector<Entry> removeAll();
    // The waiting entries alone.
    std::vector<Entry> removeWaiting();
    // Drops what waits for these reminders (of the focus timer); true when the current entry is one
    // of them, which is left for the caller to take down.
    bool remove(const std::unordered_set<ReminderId>& reminders);
    bool removeFocusAlerts();
    // Rewrites the entries of a reminder that was edited. A running break keeps its end. True when
    // the current entry changed.
    bool update(ReminderId reminder, const Upcoming::Item& edited);
    // Makes the first waiting entry (or none) the current one.
    void takeNext();
};

bool isSameSource(const AlertQueue::Entry::Source& a, const AlertQueue::Entry::Source& b);

}  // namespace tendel

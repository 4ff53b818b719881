#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "base/Instant.h"
#include "model/FocusBlock.h"
#include "model/ReminderEvent.h"

namespace tendel {

// One answered or missed alert, as the statistics count it, packed because a history holds a
// million of them. The title is not owned: it lives as long as what the record was made from.
struct StatsRecord {
    Instant dueAt;
    ReminderKind kind : 8 = ReminderKind::work;
    Outcome outcome : 8 = Outcome::done;

    StatsRecord() = default;
    StatsRecord(std::optional<ReminderId> reminder, std::string_view title, ReminderKind kind,
                Instant dueAt, Outcome outcome);
    explicit StatsRecord(const ReminderEvent& event);
    // An event that goes at once would leave a title that points nowhere.
    explicit StatsRecord(ReminderEvent&&) = delete;

    // Absent when that reminder no longer exists.
    std::optional<ReminderId> reminderID() const {
        return hasReminder_ ? std::optional(reminder_) : std::nullopt;
    }
    bool hasReminder() const { return hasReminder_; }
    void forgetReminder() { hasReminder_ = false; }
    // As recorded with the event.
    std::string_view title() const { return {title_, titleSize_}; }

    friend bool operator==(const StatsRecord& a, const StatsRecord& b);

private:
    bool hasReminder_ = false;
    std::uint32_t titleSize_ = 0;
    ReminderId reminder_;
    const char* title_ = nullptr;
};
static_assert(sizeof(StatsRecord) == 32);

// One block of focus, as the statistics count it.
struct FocusRecord {
    Instant start;
    int focusedSeconds = 0;
    bool finished = false;

    FocusRecord() = default;
    explicit FocusRecord(const FocusBlock& block);

    friend bool operator==(const FocusRecord&, const FocusRecord&) = default;
};

// How many alerts had which outcome: a break taken counts as done, a skipped alert as missed.
// Adding beyond 64 bits ends the program.
struct StatsTally {
    std::int64_t done = 0;
    std::int64_t missed = 0;
    std::int64_t snoozed = 0;

    void count(Outcome outcome, std::int64_t times = 1);
    StatsTally& operator+=(const StatsTally& other);
    // done ÷ (done + missed), 0–1; absent when both are 0.
    std::optional<double> doneRate() const;
    // "3 done · 1 missed"; what is 0 is left out.
    std::string countsText() const;

    friend bool operator==(const StatsTally&, const StatsTally&) = default;
};

}  // namespace tendel

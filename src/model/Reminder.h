#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "base/Instant.h"
#include "model/TimeOfDay.h"

namespace tendel {

// The store's identifier of a reminder; 0 before the first save. Never given to another reminder.
struct ReminderId {
    std::int64_t value = 0;

    friend constexpr auto operator<=>(ReminderId, ReminderId) = default;
};

enum class ReminderKind {
    work,      // fires inside working hours on workdays
    private_,  // fires outside them, and all day on the other days
};

// "work" and "private", the stored texts.
std::string_view rawValue(ReminderKind kind);
// "private" gives private_, every other text work.
ReminderKind reminderKind(std::string_view raw);

// One recurring prompt of the user. Holds what is stored, also where a hand edited the file; the
// functions read it as the program understands it.
struct Reminder {
    ReminderId id;
    std::string kindRaw = "work";
    std::string title;    // may be empty
    std::string details;  // may be empty
    int startHour = 9;    // 0–23, where the daily chain starts
    int startMinute = 0;  // 0–59
    int intervalMinutes = 60;
    std::optional<int> durationSeconds;       // length of the timed break; absent: no break timer
    std::optional<bool> skipsWhenAwayChoice;  // the user's choice of "stepping away counts as done"
    std::optional<bool> isBreakSuggestion;    // made from a suggestion that is a break
    std::optional<std::string> symbolName;    // chosen by the user; absent: derived from the title
    std::optional<std::string>
        animationChoice;  // an exercise's raw text or "none"; absent: derived
    bool isOn = true;
    Instant createdAt;

    ReminderKind kind() const { return reminderKind(kindRaw); }
    void setKind(ReminderKind kind) { kindRaw = rawValue(kind); }
    TimeOfDay start() const { return {startHour, startMinute}; }
    void setStart(TimeOfDay start) {
        startHour = start.hour;
        startMinute = start.minute;
    }
    // Whether stepping away counts as having done it: the user's choice, else the suggestion's,
    // else whether it has a timed break.
    bool skipsWhenAway() const;
    // The title, or "Reminder".
    std::string displayTitle() const;
    // The details; "Time for a quick break." when there are none or only the editor's untouched
    // placeholder.
    std::string displayDetails() const;
    // A new, unsaved reminder with the same content and no history.
    Reminder duplicated(Instant now) const;

    // Field by field, the identifier included.
    friend bool operator==(const Reminder&, const Reminder&) = default;
};

// What the editor's empty details field held in older versions; stored, it counts as no details.
inline constexpr std::string_view detailsPlaceholder = "Description...";

}  // namespace tendel

template <>
struct std::hash<tendel::ReminderId> {
    std::size_t operator()(tendel::ReminderId id) const noexcept {
        return std::hash<std::int64_t>{}(id.value);
    }
};

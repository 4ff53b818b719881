#pragma once

#include "storage/Store.h"

namespace SQLite {
class Statement;
}

namespace tendel {

// The statements on each table, and the way between their columns and our records.
namespace sql {
inline constexpr const char* selectReminders =
    "SELECT id, kindRaw, title, details, startHour, startMinute, intervalMinutes, durationSeconds,"
    " skipsWhenAwayChoice, isBreakSuggestion, symbolName, animationChoice, isOn, createdAt"
    " FROM reminders ORDER BY id";
inline constexpr const char* insertReminder =
    "INSERT INTO reminders (id, kindRaw, title, details, startHour, startMinute, intervalMinutes,"
    " durationSeconds, skipsWhenAwayChoice, isBreakSuggestion, symbolName, animationChoice, isOn,"
    " createdAt) VALUES (?1, ?2, ?3, ?4, ?5, ?6, ?7, ?8, ?9, ?10, ?11, ?12, ?13, ?14)";
inline constexpr const char* updateReminder =
    "UPDATE reminders SET kindRaw = ?2, title = ?3, details = ?4, startHour = ?5, startMinute = ?6,"
    " intervalMinutes = ?7, durationSeconds = ?8, skipsWhenAwayChoice = ?9, isBreakSuggestion = "
    "?10,"
    " symbolName = ?11, animationChoice = ?12, isOn = ?13, createdAt = ?14 WHERE id = ?1";
inline constexpr const char* deleteReminder = "DELETE FROM reminders WHERE id = ?1";

// To be followed by conditions and an order.
inline constexpr const char* selectEvents =
    "SELECT id, reminder, fireDate, respondedAt, outcomeRaw, reminderTitle, kindRaw FROM events ";
// A reminder may be gone when the answer to its alert is recorded.
inline constexpr const char* insertEvent =
    "INSERT INTO events (id, reminder, fireDate, respondedAt, outcomeRaw, reminderTitle, kindRaw)"
    " VALUES (?1, (SELECT id FROM reminders WHERE id = ?2), ?3, ?4, ?5, ?6, ?7)";
inline constexpr const char* updateEvent =
    "UPDATE events SET reminder = (SELECT id FROM reminders WHERE id = ?2), fireDate = ?3,"
    " respondedAt = ?4, outcomeRaw = ?5, reminderTitle = ?6, kindRaw = ?7 WHERE id = ?1";

// As above.
inline constexpr const char* selectFocusBlocks =
    "SELECT id, start, \"end\", plannedMinutes, focusedSeconds, finished FROM focusBlocks ";
inline constexpr const char* insertFocusBlock =
    "INSERT INTO focusBlocks (id, start, \"end\", plannedMinutes, focusedSeconds, finished)"
    " VALUES (?1, ?2, ?3, ?4, ?5, ?6)";
inline constexpr const char* updateFocusBlock =
    "UPDATE focusBlocks SET start = ?2, \"end\" = ?3, plannedMinutes = ?4, focusedSeconds = ?5,"
    " finished = ?6 WHERE id = ?1";
}  // namespace sql

// Read one row of a select statement above. Never fails: what makes no sense where it stands (a
// hand may have edited the file) reads as the field's default, a number out of range as the nearest
// one.
Reminder readReminder(SQLite::Statement& row);
Store::EventRow readEvent(SQLite::Statement& row);  // its texts live until the next row
FocusBlock readFocusBlock(SQLite::Statement& row);

// Bind a record to an insert or update statement above. An identifier of 0 becomes NULL, which
// gives a new row the next one.
void bindFields(SQLite::Statement& statement, const Reminder& reminder);
void bindFields(SQLite::Statement& statement, const ReminderEvent& event);
void bindFields(SQLite::Statement& statement, const FocusBlock& block);

}  // namespace tendel

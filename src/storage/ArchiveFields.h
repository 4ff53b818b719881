#pragma once

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <type_traits>

#include "model/FocusBlock.h"
#include "model/Reminder.h"
#include "model/ReminderEvent.h"

namespace tendel {

// The fields of an archive's records, in the order in which they are written. Records of several
// kinds share those of one meaning. "reminder" is a reminder's number in this file, to which events
// refer.
inline constexpr std::array<std::string_view, 22> archiveColumns{
    "reminder",
    "kind",
    "title",
    "fireDate",
    "respondedAt",
    "outcome",
    "start",
    "end",
    "plannedMinutes",
    "focusedSeconds",
    "finished",
    "details",
    "startHour",
    "startMinute",
    "intervalMinutes",
    "durationSeconds",
    "skipsWhenAwayChoice",
    "isBreakSuggestion",
    "symbolName",
    "animationChoice",
    "isOn",
    "createdAt",
};

// The position of a column, or the number of columns when there is none of that name.
constexpr std::size_t findArchiveColumn(std::string_view name) {
    return static_cast<std::size_t>(std::find(archiveColumns.begin(), archiveColumns.end(), name) -
                                    archiveColumns.begin());
}
consteval std::size_t archiveColumn(std::string_view name) {
    const std::size_t column = findArchiveColumn(name);
    if (column == archiveColumns.size()) throw std::invalid_argument("no such column");
    return column;
}

// What a file must hold for one field of a record.
struct ArchiveField {
    enum class Need {
        none,
        value,    // of a text also an empty one
        content,  // not even that
    };

    std::size_t column = 0;
    Need need = Need::none;
    int least = std::numeric_limits<int>::min();  // of a whole number
    int most = std::numeric_limits<int>::max();

    std::string_view name() const { return archiveColumns[column]; }
};

// Calls `visit(ArchiveField, member)` for each field of a Reminder, ReminderEvent or FocusBlock, in
// the order of the columns. The ranges are those in which the program understands a stored number.
template <class Record, class Visit>
void visitFields(Record& record, const Visit& visit) {
    using Kind = std::remove_const_t<Record>;
    using Field = ArchiveField;
    using enum ArchiveField::Need;
    if constexpr (std::is_same_v<Kind, Reminder>) {
        visit(Field{archiveColumn("reminder")}, record.id);
        visit(Field{archiveColumn("kind")}, record.kindRaw);
        visit(Field{archiveColumn("title"), value}, record.title);
        visit(Field{archiveColumn("details")}, record.details);
        visit(Field{archiveColumn("startHour"), none, 0, 23}, record.startHour);
        visit(Field{archiveColumn("startMinute"), none, 0, 59}, record.startMinute);
        visit(Field{archiveColumn("intervalMinutes"), none, 1}, record.intervalMinutes);
        visit(Field{archiveColumn("durationSeconds"), none, 0}, record.durationSeconds);
        visit(Field{archiveColumn("skipsWhenAwayChoice")}, record.skipsWhenAwayChoice);
        visit(Field{archiveColumn("isBreakSuggestion")}, record.isBreakSuggestion);
        visit(Field{archiveColumn("symbolName")}, record.symbolName);
        visit(Field{archiveColumn("animationChoice")}, record.animationChoice);
        visit(Field{archiveColumn("isOn")}, record.isOn);
        visit(Field{archiveColumn("createdAt"), value}, record.createdAt);
    } else if constexpr (std::is_same_v<Kind, ReminderEvent>) {
        visit(Field{archiveColumn("reminder")}, record.reminder);
        visit(Field{archiveColumn("kind")}, record.kindRaw);
        visit(Field{archiveColumn("title")}, record.reminderTitle);
        visit(Field{archiveColumn("fireDate"), value}, record.fireDate);
        visit(Field{archiveColumn("respondedAt")}, record.respondedAt);
        visit(Field{archiveColumn("outcome"), content}, record.outcomeRaw);
    } else {
        static_assert(std::is_same_v<Kind, FocusBlock>);
        visit(Field{archiveColumn("start"), value}, record.start);
        visit(Field{archiveColumn("end")}, record.end);
        visit(Field{archiveColumn("plannedMinutes"), none, 0}, record.plannedMinutes);
        visit(Field{archiveColumn("focusedSeconds"), value, 0}, record.focusedSeconds);
        visit(Field{archiveColumn("finished")}, record.finished);
    }
}

}  // namespace tendel

#include "storage/StoreRows.h"

#include <SQLiteCpp/SQLiteCpp.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>
#include <string>

#include "base/Iso8601.h"

namespace tendel {

namespace {

std::optional<std::int64_t> wholeNumber(const SQLite::Column& value) {
    if (value.isInteger()) return value.getInt64();
    if (!value.isFloat()) return std::nullopt;
    constexpr double limit = 9e18;
    return static_cast<std::int64_t>(std::clamp(value.getDouble(), -limit, limit));
}

std::optional<int> number(const SQLite::Column& value) {
    const auto stored = wholeNumber(value);
    if (!stored) return std::nullopt;
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(*stored, Limits::min(), Limits::max()));
}

std::optional<bool> boolean(const SQLite::Column& value) {
    const auto stored = wholeNumber(value);
    if (!stored) return std::nullopt;
    return *stored != 0;
}

std::optional<Instant> instant(const SQLite::Column& value) {
    const auto stored = wholeNumber(value);
    if (!stored) return std::nullopt;
    return std::clamp(Instant{Duration{*stored}}, earliestIso8601, latestIso8601);
}

std::optional<std::string> text(const SQLite::Column& value) {
    if (value.isNull()) return std::nullopt;
    return value.getString();
}

// Binds one value after the other.
class Binder {
public:
    explicit Binder(SQLite::Statement& statement) : statement_(statement) {}

    void operator()(std::int64_t value) { statement_.bind(++index_, value); }
    void operator()(int value) { statement_.bind(++index_, value); }
    void operator()(bool value) { statement_.bind(++index_, value ? 1 : 0); }
    void operator()(Instant value) { (*this)(std::int64_t{value.time_since_epoch().count()}); }
    void operator()(const std::string& value) { statement_.bind(++index_, value); }
    void operator()(ReminderId value) { (*this)(value.value); }
    template <class T>
    void operator()(const std::optional<T>& value) {
        if (value)
            (*this)(*value);
        else
            statement_.bind(++index_);
    }
    void identifier(std::int64_t id) { (*this)(id == 0 ? std::nullopt : std::optional(id)); }

private:
    SQLite::Statement& statement_;
    int index_ = 0;
};

}  // namespace

Reminder readReminder(SQLite::Statement& row) {
    int column = -1;
    const auto next = [&] { return row.getColumn(++column); };
    Reminder reminder;
    reminder.id.value = next().getInt64();
    reminder.kindRaw = text(next()).value_or(reminder.kindRaw);
    reminder.title = text(next()).value_or("");
    reminder.details = text(next()).value_or("");
    reminder.startHour = number(next()).value_or(reminder.startHour);
    reminder.startMinute = number(next()).value_or(reminder.startMinute);
    reminder.intervalMinutes = number(next()).value_or(reminder.intervalMinutes);
    reminder.durationSeconds = number(next());
    reminder.skipsWhenAwayChoice = boolean(next());
    reminder.isBreakSuggestion = boolean(next());
    reminder.symbolName = text(next());
    reminder.animationChoice = text(next());
    reminder.isOn = boolean(next()).value_or(reminder.isOn);
    reminder.createdAt = instant(next()).value_or(Instant{});
    return reminder;
}

Store::EventRow readEvent(SQLite::Statement& row) {
    // NULL reads as an empty text, which gives each its default.
    const auto textAt = [&](int column) {
        const SQLite::Column value = row.getColumn(column);
        const char* const text = value.getText();
        return std::string_view(text, static_cast<std::size_t>(value.getBytes()));
    };
    Store::EventRow event;
    event.id = row.getColumn(0).getInt64();
    if (const auto id = wholeNumber(row.getColumn(1))) event.reminder = ReminderId{*id};
    const auto due = instant(row.getColumn(2)), responded = instant(row.getColumn(3));
    event.fireDate = due ? *due : responded.value_or(Instant{});
    event.respondedAt = responded.value_or(event.fireDate);
    event.outcomeRaw = textAt(4);
    event.reminderTitle = textAt(5);
    event.kindRaw = textAt(6);
    return event;
}

FocusBlock readFocusBlock(SQLite::Statement& row) {
    FocusBlock block;
    block.id = row.getColumn(0).getInt64();
    block.start = instant(row.getColumn(1)).value_or(Instant{});
    block.end = instant(row.getColumn(2));
    block.plannedMinutes = number(row.getColumn(3)).value_or(0);
    block.focusedSeconds = number(row.getColumn(4)).value_or(0);
    block.finished = boolean(row.getColumn(5)).value_or(false);
    return block;
}

void bindFields(SQLite::Statement& statement, const Reminder& reminder) {
    Binder bind(statement);
    bind.identifier(reminder.id.value);
    bind(reminder.kindRaw);
    bind(reminder.title);
    bind(reminder.details);
    bind(reminder.startHour);
    bind(reminder.startMinute);
    bind(reminder.intervalMinutes);
    bind(reminder.durationSeconds);
    bind(reminder.skipsWhenAwayChoice);
    bind(reminder.isBreakSuggestion);
    bind(reminder.symbolName);
    bind(reminder.animationChoice);
    bind(reminder.isOn);
    bind(reminder.createdAt);
}

void bindFields(SQLite::Statement& statement, const ReminderEvent& event) {
    Binder bind(statement);
    bind.identifier(event.id);
    bind(event.reminder);
    bind(event.fireDate);
    bind(event.respondedAt);
    bind(event.outcomeRaw);
    bind(event.reminderTitle);
    bind(event.kindRaw);
}

void bindFields(SQLite::Statement& statement, const FocusBlock& block) {
    Binder bind(statement);
    bind.identifier(block.id);
    bind(block.start);
    bind(block.end);
    bind(block.plannedMinutes);
    bind(block.focusedSeconds);
    bind(block.finished);
}

}  // namespace tendel

#include "storage/ArchiveLoader.h"

#include <algorithm>
#include <cassert>
#include <charconv>
#include <system_error>
#include <unordered_map>
#include <utility>

#include "base/Iso8601.h"
#include "base/Text.h"

namespace tendel {

namespace {

using Type = ArchiveCell::Type;
using Need = ArchiveField::Need;

// Each `take` reads a cell that has a value; it answers what is wrong with it, or an empty text.

std::string take(const ArchiveCell& cell, const ArchiveField& field, std::string& value) {
    if (cell.type != Type::text && cell.type != Type::untyped) return "is not a text";
    if (cell.text.empty() && field.need == Need::content) return "is missing";
    value = cell.text;
    return {};
}

std::string takeNumber(const ArchiveCell& cell, std::int64_t least, std::int64_t most,
                       std::int64_t& value) {
    std::errc error{};
    if (cell.type == Type::number) {
        value = cell.number;
    } else {
        if (cell.type != Type::untyped) return "is not a whole number";
        const char* end = cell.text.data() + cell.text.size();
        const auto read = std::from_chars(cell.text.data(), end, value);
        if (read.ptr != end || read.ec == std::errc::invalid_argument)
            return "is not a whole number";
        error = read.ec;
    }
    if (error != std::errc{} || value < least || most < value)
        return "is not between " + std::to_string(least) + " and " + std::to_string(most);
    return {};
}

std::string take(const ArchiveCell& cell, const ArchiveField& field, int& value) {
    std::int64_t number = 0;
    std::string problem = takeNumber(cell, field.least, field.most, number);
    if (problem.empty()) value = static_cast<int>(number);
    return problem;
}

std::string take(const ArchiveCell& cell, const ArchiveField&, ReminderId& value) {
    return takeNumber(cell, 1, std::numeric_limits<std::int64_t>::max(), value.value);
}

std::string take(const ArchiveCell& cell, const ArchiveField&, bool& value) {
    if (cell.type == Type::boolean) {
        value = cell.number != 0;
        return {};
    }
    if (cell.type == Type::untyped) {
        // As we write it, and as spreadsheets do after they understood it.
        const std::pair<std::string_view, bool> forms[] = {{"true", true},   {"TRUE", true},
                                                           {"1", true},      {"false", false},
                                                           {"FALSE", false}, {"0", false}};
        for (const auto& [form, meaning] : forms) {
            if (cell.text != form) continue;
            value = meaning;
            return {};
        }
    }
    return "is not true or false";
}

std::string take(const ArchiveCell& cell, const ArchiveField&, Instant& value) {
    const bool isText = cell.type == Type::text || cell.type == Type::untyped;
    const auto read = isText ? parseIso8601(cell.text) : std::nullopt;
    if (!read) return "is not a date";
    value = *read;
    return {};
}

template <class Value>
std::string take(const ArchiveCell& cell, const ArchiveField& field, std::optional<Value>& value) {
    return take(cell, field, value.emplace());
}

bool isAbsent(const ArchiveCell& cell) {
    return cell.type == Type::missing || cell.type == Type::noColumn || cell.type == Type::empty;
}

template <class Value>
void settleField(const ArchiveField&, Value&) {}
void settleField(const ArchiveField&, std::string& text) {
    makeWellFormed(text);
}
void settleField(const ArchiveField& field, int& number) {
    number = std::clamp(number, field.least, field.most);
}
template <class Value>
void settleField(const ArchiveField& field, std::optional<Value>& value) {
    if (value) settleField(field, *value);
}

}  // namespace

void settle(Archive& archive) {
    const auto each = [](auto& records) {
        for (auto& record : records)
            visitFields(record,
                        [](const ArchiveField& field, auto& value) { settleField(field, value); });
    };
    each(archive.reminders);
    each(archive.events);
    each(archive.focusBlocks);
    for (ReminderEvent& event : archive.events) {
        if (event.outcomeRaw.empty()) event.outcomeRaw = rawValue(event.outcome());
        if (!event.reminder || !event.reminderTitle.empty()) continue;
        // As the store's backfill would after an import, which a second one could not know again.
        const Reminder& reminder =
            archive.reminders[static_cast<std::size_t>(event.reminder->value) - 1];
        event.reminderTitle = reminder.displayTitle();
        event.kindRaw = rawValue(reminder.kind());
    }
    for (FocusBlock& block : archive.focusBlocks)
        if (!block.end)
            block.end =
                std::min(block.start + std::chrono::seconds(block.focusedSeconds), latestIso8601);
}

void ArchiveLoader::fail(int line, const std::string& why) {
    if (!failure_) failure_ = Error{"line " + std::to_string(line) + ": " + why};
}

template <class Record>
Record ArchiveLoader::read(const ArchiveRow& row, int line) {
    Record record;
    visitFields(record, [&]<class Value>(const ArchiveField& field, Value& value) {
        if (failure_) return;
        const ArchiveCell& cell = row[field.column];
        if constexpr (std::is_same_v<Value, std::string>)
            if (cell.type == Type::empty && field.need != Need::content) return value.clear();
        const std::string name(field.name());
        if (!isAbsent(cell)) {
            const std::string problem = take(cell, field, value);
            if (!problem.empty()) fail(cell.line, name + " " + problem);
        } else if (field.need != Need::none) {
            if (cell.type == Type::noColumn)
                fail(cell.line, "there is no column \"" + name + "\"");
            else
                fail(line, name + " is missing");
        }
    });
    return record;
}

void ArchiveLoader::add(Kind kind, const ArchiveRow& row, int line) {
    if (failure_) return;
    if (kind == Kind::reminder) {
        archive_.reminders.push_back(read<Reminder>(row, line));
        reminderPlaces_.push_back({archive_.reminders.back().id.value, line});
    } else if (kind == Kind::event) {
        ReminderEvent event = read<ReminderEvent>(row, line);
        if (isAbsent(row[archiveColumn("respondedAt")])) event.respondedAt = event.fireDate;
        eventPlaces_.push_back({event.reminder.value_or(ReminderId{}).value, line});
        archive_.events.push_back(std::move(event));
    } else {
        archive_.focusBlocks.push_back(read<FocusBlock>(row, line));
    }
}

void ArchiveLoader::linkEvents() {
    std::unordered_map<std::int64_t, std::size_t> byNumber;
    for (std::size_t i = 0; i < reminderPlaces_.size(); ++i) {
        const auto [number, line] = reminderPlaces_[i];
        archive_.reminders[i].id.value = static_cast<std::int64_t>(i) + 1;
        if (number == 0) continue;
        const auto [known, isNew] = byNumber.try_emplace(number, i);
        if (!isNew)
            return fail(line, "reminder " + std::to_string(number) + " is there already, in line " +
                                  std::to_string(reminderPlaces_[known->second].line));
    }
    for (std::size_t i = 0; i < eventPlaces_.size(); ++i) {
        const auto [number, line] = eventPlaces_[i];
        if (number == 0) continue;
        const auto found = byNumber.find(number);
        if (found == byNumber.end())
            return fail(line, "there is no reminder " + std::to_string(number) + " in this file");
        archive_.events[i].reminder = archive_.reminders[found->second].id;
    }
}

Result<Archive> ArchiveLoader::finish() {
    if (!failure_) linkEvents();
    if (failure_) return *failure_;
    settle(archive_);
    return std::move(archive_);
}

}  // namespace tendel

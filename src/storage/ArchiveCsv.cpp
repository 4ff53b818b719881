#include "storage/ArchiveCsv.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "base/Iso8601.h"
#include "storage/ArchiveFields.h"
#include "storage/ArchiveLoader.h"

namespace tendel {

namespace {

using tendel::append;

constexpr std::string_view recordColumn = "record";
// By ArchiveLoader::Kind.
constexpr std::array<std::string_view, 3> recordNames{"reminder", "event", "focus"};
constexpr std::string_view separators = ",;\t";

// Whether a spreadsheet may take it for a formula; the last four are the full-width forms.
bool beginsLikeAFormula(std::string_view text) {
    constexpr std::string_view beginnings[] = {"=",  "+",      "-",      "@",      "\t",    "\r",
                                               "\n", "\uff1d", "\uff0b", "\uff0d", "\uff20"};
    return std::any_of(std::begin(beginnings), std::end(beginnings),
                       [&](std::string_view beginning) { return text.starts_with(beginning); });
}

std::string_view withoutApostrophe(std::string_view text) {
    if (!text.starts_with('\'')) return text;
    const std::string_view rest = text.substr(1);
    const bool isOurs = rest.empty() || rest.starts_with('\'') || beginsLikeAFormula(rest);
    return isOurs ? rest : text;
}

void append(std::string& out, std::string_view text) {
    const bool needsApostrophe = text.starts_with('\'') || beginsLikeAFormula(text);
    const bool needsQuotes = text.find_first_of("\",;\t\r\n") != std::string_view::npos ||
                             text.starts_with(' ') || text.ends_with(' ');
    if (needsQuotes) out += '"';
    if (needsApostrophe) out += '\'';
    for (const char c : text) {
        if (c == '"') out += '"';
        out += c;
    }
    if (needsQuotes) out += '"';
}
void append(std::string& out, const std::string& text) {
    append(out, std::string_view(text));
}
void append(std::string& out, Instant value) {
    out += formatIso8601Exactly(value);
}
void append(std::string& out, const std::optional<std::string>& text) {
    if (!text) return;
    if (text->empty())
        out += '\'';
    else
        append(out, *text);
}
template <class Value>
void append(std::string& out, const std::optional<Value>& value) {
    if (value) append(out, *value);
}

template <class Record>
void writeRows(ArchiveLoader::Kind kind, const std::vector<Record>& records, const TextSink& sink) {
    constexpr std::size_t columns = archiveColumns.size();
    std::string row;
    for (const Record& record : records) {
        row = recordNames[static_cast<std::size_t>(kind)];
        std::size_t written = 0;
        visitFields(record, [&](const ArchiveField& field, const auto& value) {
            assert(written <= field.column);
            row.append(field.column + 1 - written, ',');
            written = field.column + 1;
            append(row, value);
        });
        row.append(columns - written, ',');
        row += "\r\n";
        sink(row);
    }
}

// The rows of a table, one after the other.
class Rows {
public:
    struct Cell {
        std::string text;
        int line = 0;
    };

    Rows(std::string_view text, char separator, ArchiveLoader& loader)
        : text_(text), separator_(separator), loader_(loader) {}

    // Goes to the next row that has something in it. False after the last one and after a failure,
    // of which the loader then knows.
    bool next() {
        while (at_ < text_.size() && !loader_.hasFailed()) {
            readRow();
            const bool hasContent =
                std::any_of(cells().begin(), cells().end(),
                            [](const Cell& cell) { return !cell.text.empty(); });
            if (hasContent) return !loader_.hasFailed();
        }
        return false;
    }
    std::span<const Cell> cells() const { return {cells_.data(), count_}; }
    int line() const { return cells_.front().line; }

private:
    void readRow() {
        count_ = 0;
        for (;;) {
            readCell();
            if (loader_.hasFailed() || at_ == text_.size()) return;
            const char end = text_[at_++];
            if (end == separator_) continue;
            if (end == '\r' && at_ < text_.size() && text_[at_] == '\n') ++at_;
            ++line_;
            return;
        }
    }

    void readCell() {
        if (count_ == cells_.size()) cells_.emplace_back();
        Cell& cell = cells_[count_++];
        cell.text.clear();
        cell.line = line_;
        if (at_ < text_.size() && text_[at_] == '"') return readQuoted(cell);
        const std::size_t begin = at_;
        while (at_ < text_.size() && !endsCell(text_[at_]))
            ++at_;
        cell.text = text_.substr(begin, at_ - begin);
    }

    void readQuoted(Cell& cell) {
        for (;;) {
            const std::size_t begin = at_ + 1;
            at_ = text_.find('"', begin);
            if (at_ == std::string_view::npos) {
                at_ = text_.size();
                return loader_.fail(cell.line, "the quote that begins here is not closed");
            }
            const std::string_view piece = text_.substr(begin, at_ - begin);
            line_ += lineBreaks(piece);
            cell.text += piece;
            ++at_;
            if (at_ == text_.size() || text_[at_] != '"') break;
            cell.text += '"';
        }
        if (at_ < text_.size() && !endsCell(text_[at_]))
            loader_.fail(line_, "there is text behind a closing quote");
    }

    bool endsCell(char c) const { return c == separator_ || c == '\n' || c == '\r'; }

    static int lineBreaks(std::string_view text) {
        int count = 0;
        for (std::size_t i = 0; i < text.size(); ++i)
            if (text[i] == '\n' || (text[i] == '\r' && text.substr(i + 1, 1) != "\n")) ++count;
        return count;
    }

    std::string_view text_;
    char separator_;
    ArchiveLoader& loader_;
    std::size_t at_ = 0;
    int line_ = 1;
    std::vector<Cell> cells_;  // more than there are in this row, to keep their memory
    std::size_t count_ = 0;
};

// The first one outside quotes: no name of ours has one in it.
char separatorOf(std::string_view text) {
    bool isQuoted = false;
    for (const char c : text) {
        if (c == '"') isQuoted = !isQuoted;
        if (isQuoted) continue;
        if (separators.find(c) != std::string_view::npos) return c;
        if (c == '\n' || c == '\r') break;
    }
    return separators.front();
}

// What the table's first row says.
class Header {
public:
    Header(const Rows& rows, ArchiveLoader& loader) {
        for (ArchiveCell& cell : blank_)
            cell = {.type = ArchiveCell::Type::noColumn, .line = rows.line(), .text = {}};
        for (const Rows::Cell& cell : rows.cells()) {
            const std::size_t column = findArchiveColumn(cell.text);
            const bool isRecord = cell.text == recordColumn;
            if (isRecord ? record_.has_value() : isKnown(column) && hasColumn(column))
                loader.fail(cell.line, "the column \"" + cell.text + "\" is there twice");
            if (isRecord) record_ = columns_.size();
            if (isKnown(column)) blank_[column].type = ArchiveCell::Type::empty;
            columns_.push_back(column);
        }
        if (!record_)
            loader.fail(rows.line(), "there is no column \"" + std::string(recordColumn) + "\"");
    }

    void load(const Rows& rows, ArchiveLoader& loader) const {
        const auto cells = rows.cells();
        const bool hasMore =
            cells.size() > columns_.size() &&
            std::any_of(cells.begin() + static_cast<std::ptrdiff_t>(columns_.size()), cells.end(),
                        [](const auto& cell) { return !cell.text.empty(); });
        if (cells.size() < columns_.size() || hasMore)
            return loader.fail(rows.line(), "it has " + std::to_string(cells.size()) +
                                                " columns instead of " +
                                                std::to_string(columns_.size()));
        const Rows::Cell& record = cells[*record_];
        const auto kind = std::find(recordNames.begin(), recordNames.end(), record.text);
        if (kind == recordNames.end())
            return loader.fail(record.line, "record is not \"reminder\", \"event\" or \"focus\"");
        ArchiveRow row = blank_;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (!isKnown(columns_[i])) continue;
            ArchiveCell& cell = row[columns_[i]];
            cell.line = cells[i].line;
            if (cells[i].text.empty()) continue;
            cell.type = ArchiveCell::Type::untyped;
            cell.text = withoutApostrophe(cells[i].text);
        }
        loader.add(static_cast<ArchiveLoader::Kind>(kind - recordNames.begin()), row, rows.line());
    }

private:
    static bool isKnown(std::size_t column) { return column < archiveColumns.size(); }
    bool hasColumn(std::size_t column) const {
        return blank_[column].type != ArchiveCell::Type::noColumn;
    }

    ArchiveRow blank_;
    std::vector<std::size_t> columns_;  // of ours, for each column of the file
    std::optional<std::size_t> record_;
};

}  // namespace

void writeCsv(const Archive& archive, const TextSink& sink) {
    using Kind = ArchiveLoader::Kind;
    std::string header(recordColumn);
    for (const std::string_view name : archiveColumns)
        (header += ',') += name;
    sink(header += "\r\n");
    writeRows(Kind::reminder, archive.reminders, sink);
    writeRows(Kind::event, archive.events, sink);
    writeRows(Kind::focus, archive.focusBlocks, sink);
}

Result<Archive> parseCsv(std::string_view text) {
    ArchiveLoader loader;
    // Blank lines before the header have no separator.
    Rows rows(text, separatorOf(text.substr(std::min(text.find_first_not_of("\r\n"), text.size()))),
              loader);
    if (rows.next()) {
        const Header header(rows, loader);
        while (rows.next())
            header.load(rows, loader);
    }
    return loader.finish();
}

}  // namespace tendel

#include "storage/ArchiveJson.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "base/Iso8601.h"
#include "storage/ArchiveFields.h"
#include "storage/ArchiveLoader.h"

namespace tendel {

namespace {

using tendel::append;

constexpr int formatVersion = 1;
constexpr std::string_view formatKey = "format";
// By ArchiveLoader::Kind.
constexpr std::array<std::string_view, 3> listKeys{"reminders", "events", "focusBlocks"};

void append(std::string& out, std::string_view text) {
    constexpr std::string_view hexDigits = "0123456789abcdef";
    out += '"';
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            (out += '\\') += c;
        } else if (c == '\n') {
            out += "\\n";
        } else if (code < 0x20) {
            ((out += "\\u00") += hexDigits[code / 16]) += hexDigits[code % 16];
        } else {
            out += c;
        }
    }
    out += '"';
}
void append(std::string& out, Instant value) {
    append(out, std::string_view(formatIso8601Exactly(value)));
}

template <class Record>
void appendRecord(std::string& out, const Record& record) {
    char separator = '{';
    const auto member = [&](const ArchiveField& field, const auto& value) {
        out += separator;
        if (separator == ',') out += ' ';
        separator = ',';
        append(out, field.name());
        out += ": ";
        append(out, value);
    };
    visitFields(record, [&]<class Value>(const ArchiveField& field, const Value& value) {
        if constexpr (requires { value.has_value(); }) {
            if (value) member(field, *value);
        } else {
            member(field, value);
        }
    });
    out += '}';
}

template <class Record>
void writeList(ArchiveLoader::Kind kind, const std::vector<Record>& records, const TextSink& sink) {
    std::string piece = ",\n  ";
    append(piece, listKeys[static_cast<std::size_t>(kind)]);
    piece += ": [";
    std::string_view separator = "\n    ";
    for (const Record& record : records) {
        piece += separator;
        separator = ",\n    ";
        appendRecord(piece, record);
        sink(piece);
        piece.clear();
    }
    piece += records.empty() ? "]" : "\n  ]";
    sink(piece);
}

// Characters that tell how far they were read.
struct TrackedCharacter {
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    const char* at;
    const char** furthest;

    reference operator*() const { return *at; }
    TrackedCharacter& operator++() {
        *furthest = ++at;
        return *this;
    }
    friend bool operator==(const TrackedCharacter& a, const TrackedCharacter& b) {
        return a.at == b.at;
    }
};

// Hears of one token after the other.
class Reader final : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit Reader(std::string_view text) : text_(text) {}

    Result<Archive> read() {
        const char* end = text_.data() + text_.size();
        const bool isWhole = nlohmann::json::sax_parse(TrackedCharacter{text_.data(), &furthest_},
                                                       TrackedCharacter{end, &furthest_}, this);
        // Whatever else is wrong with it, this is the reason.
        if (formatProblem_) return *formatProblem_;
        if (isWhole && !hasFormat_ && isObject_)
            return Error{"line 1: there is no \"format\", as every export of Tendel has"};
        return loader_.finish();
    }

    bool null() override { return scalar(Type::missing); }
    bool boolean(bool value) override { return scalar(Type::boolean, value ? 1 : 0); }
    bool number_integer(number_integer_t value) override { return scalar(Type::number, value); }
    bool number_unsigned(number_unsigned_t value) override {
        constexpr auto most = std::numeric_limits<std::int64_t>::max();
        return scalar(Type::number,
                      static_cast<std::int64_t>(std::min(value, number_unsigned_t{most})));
    }
    bool number_float(number_float_t, const string_t&) override { return scalar(Type::other); }
    bool string(string_t& value) override { return scalar(Type::text, 0, &value); }
    bool binary(binary_t&) override { return scalar(Type::other); }

    bool start_object(std::size_t) override {
        if (depth_ == 0) {
            isObject_ = true;
        } else if (list_ && depth_ == recordDepth - 1) {
            row_.fill({});
            recordLine_ = line();
        } else {
            scalar(Type::other);
        }
        ++depth_;
        return true;
    }
    bool end_object() override {
        if (list_ && depth_ == recordDepth) loader_.add(*list_, row_, recordLine_);
        --depth_;
        return true;
    }
    bool start_array(std::size_t) override {
        if (depth_ == 1 && keyOfList_)
            list_ = keyOfList_;
        else
            scalar(Type::other);
        ++depth_;
        return true;
    }
    bool end_array() override {
        --depth_;
        if (depth_ == 1) list_.reset();
        return true;
    }
    bool key(string_t& name) override {
        if (depth_ == 1) {
            const auto found = std::find(listKeys.begin(), listKeys.end(), name);
            keyOfList_.reset();
            if (found != listKeys.end())
                keyOfList_ = static_cast<ArchiveLoader::Kind>(found - listKeys.begin());
            isKeyOfFormat_ = name == formatKey;
        } else if (list_ && depth_ == recordDepth) {
            cell_ = nullptr;
            const std::size_t column = findArchiveColumn(name);
            if (column == archiveColumns.size()) return true;
            cell_ = &row_[column];
            if (cell_->line != 0) loader_.fail(line(), name + " is there twice");
        }
        return true;
    }
    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override {
        const bool isAtEnd = furthest_ == text_.data() + text_.size() && depth_ > 0;
        loader_.fail(line(), isAtEnd ? "the file ends too early" : "this is not JSON");
        return false;
    }

private:
    using Type = ArchiveCell::Type;
    // Of the members of a record: those of the file have 1, the records in a list 2.
    static constexpr int recordDepth = 3;

    // The line of the token that was read last. Of a number one character more was looked at; of
    // every other token the last one is no line break.
    int line() {
        const char* last = furthest_ == text_.data() ? furthest_ : furthest_ - 1;
        line_ += static_cast<int>(std::count(counted_, last, '\n'));
        counted_ = last;
        return line_;
    }

    // Also what stands for a list or an object where none belongs.
    bool scalar(Type type, std::int64_t number = 0, std::string* text = nullptr) {
        if (depth_ == 0) {
            loader_.fail(line(), "this is not a JSON object");
        } else if (depth_ == 1 && isKeyOfFormat_) {
            checkFormat(type, number);
        } else if (depth_ == 1 && keyOfList_) {
            loader_.fail(line(), listName(*keyOfList_) + " is not a list");
        } else if (list_ && depth_ == recordDepth - 1) {
            loader_.fail(line(), listName(*list_) + " holds something that is not an object");
        } else if (list_ && depth_ == recordDepth && cell_) {
            cell_->type = type;
            cell_->line = line();
            cell_->number = number;
            if (text) cell_->text.swap(*text);
        }
        return true;
    }

    void checkFormat(Type type, std::int64_t number) {
        hasFormat_ = true;
        const std::string where = "line " + std::to_string(line()) + ": ";
        if (type != Type::number || number < 1)
            formatProblem_ = Error{where + "format is not a version of Tendel's exports"};
        else if (number > formatVersion)
            formatProblem_ =
                Error{where + "it comes from a newer version of Tendel (its format is " +
                      std::to_string(number) + ", this version knows " +
                      std::to_string(formatVersion) + ")"};
    }

    static std::string listName(ArchiveLoader::Kind kind) {
        return std::string(listKeys[static_cast<std::size_t>(kind)]);
    }

    std::string_view text_;
    const char* furthest_ = text_.data();
    const char* counted_ = text_.data();  // the lines up to here are in `line_`
    int line_ = 1;

    int depth_ = 0;  // objects and lists that are open
    bool isObject_ = false;
    bool isKeyOfFormat_ = false;
    std::optional<ArchiveLoader::Kind> keyOfList_;  // the file's member that is being read
    std::optional<ArchiveLoader::Kind> list_;       // the list that is open
    ArchiveRow row_;
    ArchiveCell* cell_ = nullptr;  // of the record's member that is being read
    int recordLine_ = 0;

    bool hasFormat_ = false;
    std::optional<Error> formatProblem_;
    ArchiveLoader loader_;
};

}  // namespace

void writeJson(const Archive& archive, const TextSink& sink) {
    using Kind = ArchiveLoader::Kind;
    std::string head = "{\n  ";
    append(head, formatKey);
    head += ": ";
    append(head, formatVersion);
    sink(head);
    writeList(Kind::reminder, archive.reminders, sink);
    writeList(Kind::event, archive.events, sink);
    writeList(Kind::focus, archive.focusBlocks, sink);
    sink("\n}\n");
}

Result<Archive> parseJson(std::string_view text) {
    return Reader(text).read();
}

}  // namespace tendel

#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "base/Result.h"
#include "storage/Archive.h"
#include "storage/ArchiveFields.h"

namespace tendel {

// One value as a file holds it, and where.
struct ArchiveCell {
    enum class Type {
        missing,
        noColumn,  // the table has none for it
        empty,     // of a table: an empty text or nothing at all
        untyped,   // of a table: `text` holds whatever the field asks for
        text,
        number,
        boolean,
        other,  // what no field can hold
    };
    Type type = Type::missing;
    int line = 0;
    std::string text;
    std::int64_t number = 0;  // or whether a boolean is true
};

// The cells of one record, by column.
using ArchiveRow = std::array<ArchiveCell, archiveColumns.size()>;

// Makes an archive of the records of a file, in whichever order they come. Only the first problem
// counts; records after it are not looked at.
class ArchiveLoader {
public:
    enum class Kind { reminder, event, focus };

    // `line` is the one where the record begins.
    void add(Kind kind, const ArchiveRow& row, int line);
    // "line 17: fireDate is not a date".
    void fail(int line, const std::string& why);
    bool hasFailed() const { return failure_.has_value(); }
    // The archive in the form that Archive::of gives.
    Result<Archive> finish();

private:
    template <class Record>
    Record read(const ArchiveRow& row, int line);
    void linkEvents();

    Archive archive_;
    // For each reminder and event: the number that the file gives it, and its line there.
    struct Place {
        std::int64_t number = 0;
        int line = 0;
    };
    std::vector<Place> reminderPlaces_, eventPlaces_;
    std::optional<Error> failure_;
};

// Brings what no file should hold into the nearest form that one may: text that is not UTF-8,
// numbers outside their range (which the program understands as the nearest one inside), events
// without a title, blocks that still run.
void settle(Archive& archive);

}  // namespace tendel

#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "base/Result.h"
#include "storage/Store.h"

namespace tendel {

enum class ArchiveFormat { csv, json };

// All that the user would not want to lose, as a file of another program's format: reminders, their
// history and focus blocks. Times are kept to the microsecond, texts byte for byte.
struct Archive {
    std::vector<Reminder> reminders;
    std::vector<ReminderEvent> events;
    std::vector<FocusBlock> focusBlocks;

    // In the place of the store's identifiers, which mean nothing elsewhere, reminders have numbers
    // from 1 on and the other records none. What no file should hold is brought into a form that
    // one may: text that is not UTF-8, numbers that only a hand can have put there. A focus block
    // that still runs ends after what is counted of it, so that an import leaves none running.
    static Archive of(const Store& store);
    std::string text(ArchiveFormat format) const;
    // Either format, told apart by the content, in the same form. The message of a failure names
    // the line: "line 17: fireDate is not a date".
    static Result<Archive> parse(std::string_view text);

    friend bool operator==(const Archive&, const Archive&) = default;
};

// What an import added; what the store had already is not in it.
struct ImportCounts {
    int reminders = 0;
    int events = 0;
    int focusBlocks = 0;

    friend bool operator==(const ImportCounts&, const ImportCounts&) = default;
};

// Writes the whole file or leaves what was there. A new file is readable by the user alone.
Result<void> exportArchive(const Store& store, const std::filesystem::path& file,
                           ArchiveFormat format);
// Adds what the store does not have, in one save; when it fails nothing has changed. Overwrites
// nothing: a reminder that the store still has, renamed or edited, stays as it is there, and the
// file's events become its own. The same file a second time adds nothing.
Result<ImportCounts> importArchive(Store& store, const std::filesystem::path& file);

}  // namespace tendel

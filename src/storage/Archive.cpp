#include "storage/Archive.h"

#include <algorithm>
#include <cstdint>
#include <unordered_map>
#include <utility>

#include "base/Text.h"
#include "storage/ArchiveCsv.h"
#include "storage/ArchiveJson.h"
#include "storage/ArchiveLoader.h"
#include "storage/ArchiveMerge.h"
#include "storage/ArchiveText.h"
#include "storage/FileContent.h"

namespace tendel {

namespace fs = std::filesystem;

namespace {

// Two and a half million events, more than anybody answers in a life.
constexpr std::size_t mostBytes = 500'000'000;

Result<Archive> lineFailure(std::string_view text, std::size_t position, const std::string& why) {
    const auto line =
        1 + std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(position), '\n');
    return Error{"line " + std::to_string(line) + ": " + why};
}

void write(const Archive& archive, ArchiveFormat format, const TextSink& sink) {
    if (format == ArchiveFormat::csv)
        writeCsv(archive, sink);
    else
        writeJson(archive, sink);
}

}  // namespace

Archive Archive::of(const Store& store) {
    Archive archive{store.reminders(), store.events(), store.focusBlocks()};
    std::unordered_map<ReminderId, ReminderId> numbers;
    for (Reminder& reminder : archive.reminders) {
        const ReminderId number{static_cast<std::int64_t>(numbers.size()) + 1};
        numbers.emplace(std::exchange(reminder.id, number), number);
    }
    for (ReminderEvent& event : archive.events) {
        event.id = 0;
        if (event.reminder) event.reminder = numbers.at(*event.reminder);  // the store has it
    }
    for (FocusBlock& block : archive.focusBlocks)
        block.id = 0;
    settle(archive);
    return archive;
}

std::string Archive::text(ArchiveFormat format) const {
    std::string text;
    write(*this, format, [&](std::string_view piece) { text += piece; });
    return text;
}

Result<Archive> Archive::parse(std::string_view text) {
    if (text.starts_with("\xff\xfe") || text.starts_with("\xfe\xff"))
        return Error{"line 1: this is UTF-16; only UTF-8 can be read"};
    // The byte-order mark that some programs write.
    if (text.starts_with("\xef\xbb\xbf")) text.remove_prefix(3);
    if (const auto bad = firstIllFormed(text))
        return lineFailure(text, *bad, "this is not UTF-8 text");
    const std::size_t begin = text.find_first_not_of(" \t\r\n");
    if (begin == std::string_view::npos) return Error{"it is empty"};
    const bool isJson = text[begin] == '{' || text[begin] == '[';
    return isJson ? parseJson(text) : parseCsv(text);
}

Result<void> exportArchive(const Store& store, const fs::path& file, ArchiveFormat format) {
    ContentReplacement replacement(file, ContentReplacement::TemporaryName::unused);
    std::string buffer;
    write(Archive::of(store), format, [&](std::string_view piece) {
        buffer += piece;
        if (buffer.size() < 1 << 16) return;
        replacement.write(buffer);
        buffer.clear();
    });
    replacement.write(buffer);
    const auto written = replacement.commit();
    if (!written) return fileFailure("export to", file, written.error());
    return {};
}

Result<ImportCounts> importArchive(Store& store, const fs::path& file) {
    const auto failed = [&](const std::string& why) { return fileFailure("import", file, why); };
    auto content = readContent(file, mostBytes);
    if (!content) return failed(content.error());
    auto parsed = Archive::parse(content.value());
    if (!parsed) return failed(parsed.error());
    content.value() = {};
    Archive& archive = parsed.value();

    const auto additions = additionsTo(Archive::of(store), archive);
    // The store's identifiers of the file's reminders; new ones get theirs below.
    std::vector<ReminderId> ids;
    ImportCounts counts;
    for (const auto& known : additions.knownReminders) {
        ids.push_back(known ? store.reminders()[*known].id : ReminderId{});
        if (!known) ++counts.reminders;
    }
    counts.events = static_cast<int>(additions.events.size());
    counts.focusBlocks = static_cast<int>(additions.focusBlocks.size());
    if (counts == ImportCounts{}) return counts;
    const auto saved = store.save([&](Store::Writer& writer) {
        for (std::size_t i = 0; i < ids.size(); ++i)
            if (!additions.knownReminders[i]) ids[i] = writer.insert(archive.reminders[i]);
        for (const std::size_t position : additions.events) {
            ReminderEvent& event = archive.events[position];
            if (event.reminder)
                event.reminder = ids[static_cast<std::size_t>(event.reminder->value) - 1];
            writer.insert(event);
        }
        for (const std::size_t position : additions.focusBlocks)
            writer.insert(archive.focusBlocks[position]);
    });
    if (!saved) return Error{saved.error()};
    return counts;
}

}  // namespace tendel

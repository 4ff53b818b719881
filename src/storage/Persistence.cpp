#include "storage/Persistence.h"

#include <algorithm>
#include <functional>
#include <variant>
#include <vector>

#include "base/Log.h"
#include "storage/FileNames.h"
#include "storage/StoreOpening.h"

namespace tendel {

namespace fs = std::filesystem;

namespace {

// The store's file and all that lies beside it under a name that begins with its own. The store
// comes last: as long as it is in its place, a move that was cut off is begun again at the next
// start.
std::vector<fs::path> filesOf(const fs::path& store, std::error_code& error) {
    const std::string name = store.filename().string();
    std::vector<fs::path> files;
    for (fs::directory_iterator entry(store.parent_path(), error), end; !error && entry != end;
         entry.increment(error))
        if (entry->path().filename().string().starts_with(name)) files.push_back(entry->path());
    std::sort(files.begin(), files.end(), std::greater<>());
    return files;
}

// Undoes moveAside. What a failed fresh start left in place goes first: its journal beside the old
// store would be taken for the old store's own.
void putBack(const fs::path& store, const fs::path& folder) {
    std::error_code error;
    for (const fs::path& leftover : filesOf(store, error))
        fs::remove_all(leftover, error);
    const auto moved = filesOf(folder / store.filename(), error);
    for (auto file = moved.rbegin(); file != moved.rend() && !error; ++file)
        fs::rename(*file, store.parent_path() / file->filename(), error);
    if (!error) fs::remove(folder, error);
    if (error)
        log(LogLevel::error, "storage",
            "Couldn't put the store back from " + quotedName(folder) + ": " + error.message());
}

Error fatal(const std::string& first, const std::string& second) {
    return {"Couldn't open the reminders store: " + first +
            "; starting fresh failed too: " + second};
}

}  // namespace

Result<OpenedStore> openOrStartFresh(const fs::path& file, Instant now) {
    auto opened = openStore(file);
    if (auto* store = std::get_if<std::unique_ptr<Store>>(&opened))
        return OpenedStore{std::move(*store), std::nullopt};
    const auto& failure = std::get<OpenFailure>(opened);
    log(LogLevel::error, "storage", "Couldn't open the reminders store: " + failure.message);
    // Nothing is wrong with it, and another program writes to it.
    if (failure.kind == OpenFailure::Kind::inUse)
        return Error{"Couldn't open the reminders store: " + failure.message};

    auto folder = moveAside(file, now);
    if (!folder) return fatal(failure.message, folder.error());
    auto fresh = Store::open(file);
    if (!fresh) {
        putBack(file, folder.value());
        return fatal(failure.message, fresh.error());
    }
    log(LogLevel::warning, "storage",
        "The old store was moved to " + quotedName(folder.value()) + "; starting fresh");
    return OpenedStore{std::move(fresh.value()), std::move(folder.value())};
}

Result<fs::path> moveAside(const fs::path& file, Instant now) {
    const fs::path folder = unusedPath(file.parent_path() / ("Damaged Store " + fileNameTime(now)));
    const auto failed = [](const fs::path& what, const std::error_code& why) {
        return Error{"Couldn't move " + quotedName(what) + " aside: " + why.message()};
    };
    std::error_code error;
    fs::create_directories(folder, error);
    if (error) return failed(file, error);
    const auto files = filesOf(file, error);
    if (error) return failed(file, error);
    for (auto next = files.begin(); next != files.end(); ++next) {
        fs::rename(*next, folder / next->filename(), error);
        if (!error) continue;
        std::error_code ignored;
        for (auto moved = files.begin(); moved != next; ++moved)
            fs::rename(folder / moved->filename(), *moved, ignored);
        fs::remove(folder, ignored);
        return failed(*next, error);
    }
    return folder;
}

ResetNotice resetNotice(const fs::path& folder) {
    return {"Tendel couldn't open its data",
            "Your reminders and stats were reset so Tendel can keep working. The old data was kept "
            "in a folder named " +
                quotedName(folder)};
}

}  // namespace tendel

#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "base/Instant.h"
#include "base/Result.h"
#include "storage/Store.h"

namespace tendel {

// The store as a start of the program finds it, or starts it anew.
struct OpenedStore {
    std::unique_ptr<Store> store;
    // The folder into which a store that could not be opened was moved; the user is told once.
    std::optional<std::filesystem::path> damagedStoreBackup;
};

// Opens the store at `file`; one that cannot be opened is moved aside and a fresh one started.
// Fails only when that fails too, with the message for the user.
Result<OpenedStore> openOrStartFresh(const std::filesystem::path& file, Instant now);

// Moves every file whose name begins with the store's into a new folder "Damaged Store <time>"
// beside it; answers the folder.
Result<std::filesystem::path> moveAside(const std::filesystem::path& file, Instant now);

// What the user is told after a reset.
struct ResetNotice {
    std::string title;
    std::string text;
};
ResetNotice resetNotice(const std::filesystem::path& folder);

}  // namespace tendel

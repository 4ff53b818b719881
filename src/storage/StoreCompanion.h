#pragma once

#include <filesystem>
#include <string>
#include <variant>

#include "storage/StoreOpening.h"

namespace tendel {

// A small file beside the store that does two things. While the store is open it is locked, so that
// a second program does not open it as well. And it remembers how the store's file looked when it
// was last closed in order: a file that still looks so need not be read whole at the next start.
class StoreCompanion {
public:
    // Locks the companion of the store at `file`.
    static std::variant<StoreCompanion, OpenFailure> lock(const std::filesystem::path& file);
    StoreCompanion(StoreCompanion&& other) noexcept;
    StoreCompanion& operator=(StoreCompanion&&) = delete;
    ~StoreCompanion();

    // Whether the store's file is, untouched, the one that was closed in order.
    bool isAsClosed() const;
    // Whether the file is there but empty, though a store was closed here that held something.
    bool hasLostContent() const;
    // Remembers the store's file, which nobody has open any more.
    void rememberClosed();
    // The file must be read whole at the next start.
    void forget();

private:
    StoreCompanion(std::filesystem::path store, int descriptor)
        : store_(std::move(store)), descriptor_(descriptor) {}
    std::string remembered() const;

    std::filesystem::path store_;
    int descriptor_;
};

}  // namespace tendel

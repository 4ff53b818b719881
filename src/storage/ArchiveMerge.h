#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "storage/Archive.h"

namespace tendel {

// What a file has that the store has not, as positions in the file's archive.
struct ArchiveAdditions {
    // For each reminder of the file the one of the store that it is; none: it is new.
    std::vector<std::optional<std::size_t>> knownReminders;
    std::vector<std::size_t> events;
    std::vector<std::size_t> focusBlocks;
};

// Both in the form that Archive::of gives. A reminder is the same when it was made at the same
// microsecond; among several of these the one that has changed least. An event is the same when all
// but its reminder is equal, a focus block when it began at the same microsecond. What is there
// several times counts as often.
ArchiveAdditions additionsTo(const Archive& known, const Archive& file);

}  // namespace tendel

#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <variant>

#include "storage/Store.h"

namespace tendel {

// Why a store could not be opened.
struct OpenFailure {
    enum class Kind {
        unusable,  // it, or the place where it lies
        inUse,     // another program has it open; nothing is wrong with it
    };
    Kind kind = Kind::unusable;
    std::string message;
};

// Store::open, telling the two kinds of failure apart.
std::variant<std::unique_ptr<Store>, OpenFailure> openStore(const std::filesystem::path& file);

}  // namespace tendel

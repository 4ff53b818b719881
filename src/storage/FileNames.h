#pragma once

#include <algorithm>
#include <filesystem>
#include <string>

#include "base/Calendar.h"
#include "base/Instant.h"

namespace tendel {

// A file's name as messages show it. Without its folders, which may name the user.
inline std::string quotedName(const std::filesystem::path& file) {
    return '"' + file.filename().string() + '"';
}

// A moment as part of a file name: ISO 8601, with "-" for the colons, which other systems and many
// tools do not take.
inline std::string fileNameTime(Instant t) {
    std::string text = formatIso8601(t);
    std::replace(text.begin(), text.end(), ':', '-');
    return text;
}

// `wanted`, or that with the first number behind it that makes a name not yet taken.
inline std::filesystem::path unusedPath(const std::filesystem::path& wanted) {
    std::filesystem::path path = wanted;
    std::error_code ignored;
    for (int number = 2; std::filesystem::exists(symlink_status(path, ignored)); ++number)
        path = wanted.string() + " " + std::to_string(number);
    return path;
}

}  // namespace tendel

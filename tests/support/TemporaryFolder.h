#pragma once

#include <stdlib.h>

#include <filesystem>
#include <string>

namespace tendel::test {

// A folder of its own for a test, removed at its end.
struct TemporaryFolder {
    std::filesystem::path path;

    explicit TemporaryFolder(
        const std::filesystem::path& in = std::filesystem::temp_directory_path()) {
        std::string name = in / "tendel-XXXXXX";
        path = ::mkdtemp(name.data());
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }
};

}  // namespace tendel::test

#pragma once

#include <sys/resource.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "support/TemporaryFolder.h"

namespace tendel {

// As long as it lives, no file can be written beyond `bytes`, as on a disk that is full: also for
// root.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        ::getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit now{bytes, before_.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &now);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;
    ~FullDisk() { ::setrlimit(RLIMIT_FSIZE, &before_); }

private:
    rlimit before_{};
};

inline std::string contentOf(const std::filesystem::path& file) {
    if (!std::filesystem::is_regular_file(file)) return {};
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

inline void write(const std::filesystem::path& file, const std::string& content) {
    std::ofstream(file, std::ios::binary) << content;
}

}  // namespace tendel

#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

#include "base/Result.h"
#include "storage/FileNames.h"

namespace tendel {

// "Couldn't export to "history.csv": No space left on device".
inline Error fileFailure(std::string_view action, const std::filesystem::path& file,
                         std::string_view why) {
    return {"Couldn't " + std::string(action) + " " + quotedName(file) + ": " + std::string(why)};
}

// The file's bytes. The error is the bare reason: unreadable, not a file, longer than `mostBytes`.
Result<std::string> readContent(const std::filesystem::path& file, std::size_t mostBytes);

// Replaces a file's content as one step: whoever reads it, also after a loss of power, finds either
// the old content or the new. Makes the folder; a new file is the user's alone. Follows a link.
class ContentReplacement {
public:
    // Where the new content is written until `commit`: "<file>.new" beside the file.
    enum class TemporaryName {
        fixed,   // what a crash left there is written over
        unused,  // in a folder that others use too: with a number when it is taken
    };
    ContentReplacement(const std::filesystem::path& file, TemporaryName name);
    ContentReplacement(const ContentReplacement&) = delete;
    ContentReplacement& operator=(const ContentReplacement&) = delete;
    // Without a commit the file stays as it was.
    ~ContentReplacement();

    // Adds to the new content; after a failure nothing more.
    void write(std::string_view bytes);
    // The error is the bare reason of the first failure.
    Result<void> commit();

private:
    void open(const std::filesystem::path& named, TemporaryName name);
    void fail(std::string why);

    std::filesystem::path file_, temporary_;
    int descriptor_ = -1;
    std::string failure_;
};

}  // namespace tendel

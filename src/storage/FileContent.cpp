#include "storage/FileContent.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <system_error>
#include <utility>

namespace tendel {

namespace fs = std::filesystem;

namespace {

// A file descriptor that is closed at the end of its scope.
struct OpenFile {
    int descriptor;
    explicit OpenFile(int opened) : descriptor(opened) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile() {
        if (descriptor >= 0) ::close(descriptor);
    }
};

Error lastError() {
    return {std::strerror(errno)};
}

constexpr auto notAFile = "it is not a file";

}  // namespace

Result<std::string> readContent(const fs::path& file, std::size_t mostBytes) {
    // A pipe without a writer would keep us waiting.
    const OpenFile in(::open(file.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat state {};
    if (in.descriptor < 0 || ::fstat(in.descriptor, &state) != 0) return lastError();
    if (!S_ISREG(state.st_mode)) return Error{notAFile};
    std::string content;
    // One byte more than it has, to see its end; it may grow meanwhile.
    std::size_t wanted = static_cast<std::size_t>(state.st_size) + 1;
    for (;;) {
        const std::size_t length = content.size();
        if (length > mostBytes || wanted - 1 > mostBytes)
            return Error{"it is larger than " + std::to_string(mostBytes / 1'000'000) + " MB"};
        content.resize(std::max(length + 4096, wanted));
        const ssize_t count =
            ::read(in.descriptor, content.data() + length, content.size() - length);
        if (count < 0 && errno != EINTR) return lastError();
        content.resize(length + static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        if (count == 0) return content;
        wanted = 1;
    }
}

ContentReplacement::ContentReplacement(const fs::path& file, TemporaryName name) {
    open(file, name);
}

void ContentReplacement::open(const fs::path& named, TemporaryName name) {
    std::error_code error;
    // The user may keep the file elsewhere and link to it.
    file_ = fs::weakly_canonical(fs::absolute(named), error);
    if (file_.empty()) file_ = fs::absolute(named);
    fs::create_directories(file_.parent_path(), error);
    if (error) return fail(error.message());

    struct stat old {};
    const bool isThere = ::stat(file_.c_str(), &old) == 0;
    if (isThere && !S_ISREG(old.st_mode)) return fail(notAFile);
    temporary_ = file_.string() + ".new";
    if (name == TemporaryName::unused) temporary_ = unusedPath(temporary_);
    descriptor_ = ::open(temporary_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC,
                         isThere ? old.st_mode & 0777 : 0600);
    if (descriptor_ < 0) fail(lastError().message);
}

ContentReplacement::~ContentReplacement() {
    if (descriptor_ < 0) return;
    ::close(descriptor_);
    ::unlink(temporary_.c_str());
}

void ContentReplacement::fail(std::string why) {
    if (failure_.empty()) failure_ = std::move(why);
}

void ContentReplacement::write(std::string_view bytes) {
    while (failure_.empty() && !bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR)
            fail(lastError().message);
    }
}

Result<void> ContentReplacement::commit() {
    if (failure_.empty() && ::fsync(descriptor_) != 0) fail(lastError().message);
    if (failure_.empty() && ::rename(temporary_.c_str(), file_.c_str()) != 0)
        fail(lastError().message);
    if (!failure_.empty()) return Error{failure_};
    ::close(std::exchange(descriptor_, -1));
    const OpenFile folder(::open(file_.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.descriptor >= 0) ::fsync(folder.descriptor);
    return {};
}

}  // namespace tendel

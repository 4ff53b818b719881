#include "storage/StoreCompanion.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

#include "storage/FileNames.h"

namespace tendel {

namespace fs = std::filesystem;

namespace {

// What changes whenever a file's content does; empty when there is no such file. The time of the
// last change of the inode cannot be set by hand, so that a tool which sets the other one back is
// noticed too.
std::string look(const fs::path& file) {
    struct stat now {};
    if (::stat(file.c_str(), &now) != 0) return {};
    const auto text = [](const timespec& time) {
        return std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
    };
    return std::to_string(now.st_ino) + " " + std::to_string(now.st_size) + " " +
           text(now.st_mtim) + " " + text(now.st_ctim) + "\n";
}

bool hasContent(const fs::path& file) {
    std::error_code error;
    return fs::file_size(file, error) > 0 && !error;
}

fs::path writeAheadLog(const fs::path& store) {
    return store.string() + "-wal";
}

}  // namespace

std::variant<StoreCompanion, OpenFailure> StoreCompanion::lock(const fs::path& file) {
    const fs::path companion = file.string() + "-state";
    const int descriptor = ::open(companion.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
    if (descriptor < 0)
        return OpenFailure{OpenFailure::Kind::unusable,
                           quotedName(companion) + " cannot be written: " + std::strerror(errno)};
    StoreCompanion taken(file, descriptor);
    // Where the file system knows no locks, SQLite's own must do.
    if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK)
        return OpenFailure{OpenFailure::Kind::inUse,
                           quotedName(file) + " is in use by another running program"};
    return taken;
}

StoreCompanion::StoreCompanion(StoreCompanion&& other) noexcept
    : store_(std::move(other.store_)), descriptor_(std::exchange(other.descriptor_, -1)) {}

StoreCompanion::~StoreCompanion() {
    if (descriptor_ >= 0) ::close(descriptor_);
}

std::string StoreCompanion::remembered() const {
    char text[200];
    const ssize_t length = ::pread(descriptor_, text, sizeof text, 0);
    return {text, static_cast<std::size_t>(length < 0 ? 0 : length)};
}

bool StoreCompanion::isAsClosed() const {
    const std::string last = remembered();
    return !last.empty() && last == look(store_) && !hasContent(writeAheadLog(store_));
}

bool StoreCompanion::hasLostContent() const {
    std::error_code error;
    return !remembered().empty() && fs::is_regular_file(store_, error) && !hasContent(store_) &&
           !hasContent(writeAheadLog(store_));
}

void StoreCompanion::rememberClosed() {
    if (isAsClosed()) return;
    forget();
    std::error_code error;
    if (fs::exists(writeAheadLog(store_), error) || error) return;
    // File times come from a clock that ticks every few milliseconds, or seconds. Set back, the
    // time shows every later change, however soon it follows.
    struct stat now {};
    if (::stat(store_.c_str(), &now) != 0) return;
    const timespec times[2] = {{0, UTIME_OMIT}, {now.st_mtim.tv_sec - 3, 0}};
    if (::utimensat(AT_FDCWD, store_.c_str(), times, 0) != 0) return;
    const std::string text = look(store_);
    // A text cut off by a full disk is like no other and does no harm.
    static_cast<void>(::pwrite(descriptor_, text.data(), text.size(), 0) < 0);
}

void StoreCompanion::forget() {
    static_cast<void>(::ftruncate(descriptor_, 0) != 0);
}

}  // namespace tendel

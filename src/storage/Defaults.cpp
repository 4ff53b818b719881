#include "storage/Defaults.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <limits>
#include <map>

#include <nlohmann/json.hpp>

#include "base/Calendar.h"
#include "base/Log.h"
#include "storage/FileNames.h"

namespace tendel {

using nlohmann::json;
namespace fs = std::filesystem;

namespace {

Error failure(std::string_view what, const fs::path& file, std::string_view why) {
    return {"Couldn't " + std::string(what) + " " + quotedName(file) + ": " + std::string(why)};
}

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

bool writeAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

// Replaces the file's content as one step: whoever reads it, also after a loss of power, finds
// either the old content or the new.
Result<void> replaceContent(const fs::path& named, std::string_view bytes) {
    std::error_code ignored;
    // The user may keep the file elsewhere and link to it.
    const fs::path resolved = fs::weakly_canonical(named, ignored);
    const fs::path file = resolved.empty() ? named : resolved;
    std::error_code folderError;
    fs::create_directories(file.parent_path(), folderError);
    if (folderError) return failure("write", file, folderError.message());

    struct stat old {};
    const mode_t mode = ::stat(file.c_str(), &old) == 0 ? old.st_mode & 0777 : 0600;
    const fs::path temporary = file.string() + ".new";
    const auto failed = [&] {
        const Error error = failure("write", file, std::strerror(errno));
        ::unlink(temporary.c_str());
        return error;
    };
    {
        const OpenFile out(
            ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, mode));
        if (out.descriptor < 0 || !writeAll(out.descriptor, bytes) || ::fsync(out.descriptor) != 0)
            return failed();
    }
    if (::rename(temporary.c_str(), file.c_str()) != 0) return failed();
    const OpenFile folder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder.descriptor >= 0) ::fsync(folder.descriptor);
    return {};
}

Result<json> parseObject(const fs::path& file) {
    std::ifstream in(file, std::ios::binary);
    if (!in) return failure("read", file, std::strerror(errno));
    std::string text;
    try {
        text.assign(std::istreambuf_iterator<char>(in), {});
    } catch (const std::ios_base::failure&) {
        return failure("read", file, "it is not a file");
    }
    try {
        json parsed = json::parse(text);
        if (parsed.is_object()) return parsed;
        return failure("read", file, "it is not a JSON object");
    } catch (const json::parse_error& error) {
        const auto end =
            text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
        const auto line = 1 + std::count(text.begin(), end, '\n');
        return failure("read", file, "line " + std::to_string(line) + " is not JSON");
    } catch (const json::exception& error) {
        return failure("read", file, error.what());
    }
}

}  // namespace

struct Defaults::State {
    fs::path file;  // empty: kept in memory only
    nlohmann::json values = nlohmann::json::object();

    Result<void> write() const {
        if (file.empty()) return {};
        // Text that is not UTF-8 must not stop everything else from being written.
        auto written = replaceContent(
            file, values.dump(4, ' ', false, nlohmann::json::error_handler_t::replace) + "\n");
        if (!written) log(LogLevel::error, "settings", written.error());
        return written;
    }
};

Defaults::Defaults() : state_(std::make_unique<State>()) {}

Defaults::Defaults(fs::path file) : Defaults() {
    state_->file = std::move(file);
    std::error_code error;
    const bool isThere = fs::exists(state_->file, error);
    if (!isThere && !error) return;
    if (auto parsed = parseObject(state_->file)) {
        state_->values = std::move(parsed.value());
        return;
    } else {
        log(LogLevel::warning, "settings", parsed.error() + "; using defaults");
    }
    const auto now = std::chrono::floor<Duration>(std::chrono::system_clock::now());
    const fs::path aside = unusedPath(state_->file.string() + ".damaged-" + fileNameTime(now));
    fs::rename(state_->file, aside, error);
    if (error)
        log(LogLevel::error, "settings",
            failure("keep aside", state_->file, error.message()).message);
}

Defaults::~Defaults() = default;

const json& Defaults::json(std::string_view key) const {
    static const nlohmann::json missing;
    const auto found = state_->values.find(key);
    return found == state_->values.end() ? missing : *found;
}

bool Defaults::contains(std::string_view key) const {
    return state_->values.contains(key);
}

std::optional<bool> Defaults::boolean(std::string_view key) const {
    const auto& value = json(key);
    if (!value.is_boolean()) return std::nullopt;
    return value.get<bool>();
}

std::optional<long long> Defaults::integer(std::string_view key) const {
    const auto& value = json(key);
    if (!value.is_number_integer()) return std::nullopt;
    if (value.is_number_unsigned() &&
        value.get<std::uint64_t>() > std::uint64_t(std::numeric_limits<long long>::max()))
        return std::nullopt;
    return value.get<long long>();
}

std::optional<double> Defaults::number(std::string_view key) const {
    const auto& value = json(key);
    if (!value.is_number()) return std::nullopt;
    return value.get<double>();
}

std::optional<std::string> Defaults::text(std::string_view key) const {
    const auto& value = json(key);
    if (!value.is_string()) return std::nullopt;
    return value.get<std::string>();
}

Result<void> Defaults::set(std::string_view key, nlohmann::json value) {
    state_->values[std::string(key)] = std::move(value);
    return state_->write();
}

Result<void> Defaults::remove(std::string_view key) {
    state_->values.erase(std::string(key));
    return state_->write();
}

}  // namespace tendel

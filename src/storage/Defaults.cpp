#include "storage/Defaults.h"

#include <algorithm>
#include <limits>
#include <utility>

#include <nlohmann/json.hpp>

#include "base/Calendar.h"
#include "base/Log.h"
#include "storage/FileContent.h"

namespace tendel {

using nlohmann::json;
namespace fs = std::filesystem;

namespace {

Result<json> parseObject(const fs::path& file) {
    const auto content = readContent(file, std::numeric_limits<std::size_t>::max());
    if (!content) return fileFailure("read", file, content.error());
    const std::string& text = content.value();
    try {
        json parsed = json::parse(text);
        if (parsed.is_object()) return parsed;
        return fileFailure("read", file, "it is not a JSON object");
    } catch (const json::parse_error& error) {
        const auto end =
            text.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, text.size()));
        const auto line = 1 + std::count(text.begin(), end, '\n');
        return fileFailure("read", file, "line " + std::to_string(line) + " is not JSON");
    } catch (const json::exception& error) {
        return fileFailure("read", file, error.what());
    }
}

}  // namespace

struct Defaults::State {
    fs::path file;  // empty: kept in memory only
    nlohmann::json values = nlohmann::json::object();

    Result<void> write() const {
        if (file.empty()) return {};
        // Text that is not UTF-8 must not stop everything else from being written.
        ContentReplacement replacement(file, ContentReplacement::TemporaryName::fixed);
        replacement.write(values.dump(4, ' ', false, nlohmann::json::error_handler_t::replace) +
                          "\n");
        Result<void> written = replacement.commit();
        if (!written) written = fileFailure("write", file, written.error());
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
            fileFailure("keep aside", state_->file, error.message()).message);
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

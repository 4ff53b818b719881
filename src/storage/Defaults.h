#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json_fwd.hpp>

#include "base/Result.h"

namespace tendel {

// The user's settings as typed values under keys, kept in one JSON file that is written anew at
// every change (to a temporary file, synced, renamed). A getter answers nothing for a missing key
// and for a value of another type. Main thread only.
class Defaults {
public:
    // Reads `file`. A damaged one is kept aside as `defaults.json.damaged-<time>` and logged; the
    // values start empty.
    explicit Defaults(std::filesystem::path file);
    // Kept in memory only, for tests and previews.
    Defaults();
    ~Defaults();
    Defaults(const Defaults&) = delete;
    Defaults& operator=(const Defaults&) = delete;

    std::optional<bool> boolean(std::string_view key) const;
    std::optional<long long> integer(std::string_view key) const;
    std::optional<double> number(std::string_view key) const;  // also an integer
    std::optional<std::string> text(std::string_view key) const;
    // The value as JSON, null when the key is missing.
    const nlohmann::json& json(std::string_view key) const;
    bool contains(std::string_view key) const;

    // Sets or removes and writes the file. A failed write is logged, kept in memory and tried again
    // at the next change; it is answered too, for those who want to show it.
    Result<void> set(std::string_view key, nlohmann::json value);
    Result<void> remove(std::string_view key);

private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace tendel

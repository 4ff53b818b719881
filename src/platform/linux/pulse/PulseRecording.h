#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "presence/CallMonitor.h"

namespace tendel {

// What the audio server says of one stream that records now.
struct PulseRecording {
    using Properties = std::map<std::string, std::string, std::less<>>;

    std::uint32_t source = 0;               // index of what it records from
    std::optional<std::uint32_t> client{};  // index of the program's connection; a module has none
    std::string resampleMethod{};
    bool isFromMonitor = false;  // its source is what some output plays
    Properties properties{};
    Properties clientProperties{};

    // The program behind it; nothing when that is the audio server itself or this process.
    // A process identifier and a path are given only where they are known to belong together: in
    // a sandbox a program gives a number that means another process here, or none. Its path is
    // then the executable's name alone, as far as the server knows it. `processes` is where the
    // system shows its processes.
    std::optional<MicrophoneUser> user(std::int32_t ownPid,
                                       const std::filesystem::path& processes = "/proc") const;

private:
    std::string_view property(std::string_view key) const;
    std::int32_t claimedPid() const;
};

}  // namespace tendel

#include "platform/linux/pulse/PulseRecording.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace tendel {

namespace {

constexpr std::array<std::string_view, 5> audioServers = {
    "pulseaudio", "pipewire", "pipewire-pulse", "pipewire-media-session", "wireplumber"};

std::string_view find(const PulseRecording::Properties& properties, std::string_view key) {
    const auto at = properties.find(key);
    return at == properties.end() ? std::string_view() : std::string_view(at->second);
}

std::string_view firstOf(std::initializer_list<std::string_view> texts) {
    const auto at = std::ranges::find_if(texts, [](auto text) { return !text.empty(); });
    return at == texts.end() ? std::string_view() : *at;
}

// An executable that was replaced while it runs still has its name, with a remark behind it.
std::string_view withoutRemark(std::string_view path) {
    constexpr std::string_view remark = " (deleted)";
    if (path.ends_with(remark)) path.remove_suffix(remark.size());
    return path;
}

std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

std::string executable(const std::filesystem::path& processes, std::int32_t pid) {
    std::error_code error;
    const auto path =
        std::filesystem::read_symlink(processes / std::to_string(pid) / "exe", error).string();
    return std::string(withoutRemark(path));
}

}  // namespace

std::string_view PulseRecording::property(std::string_view key) const {
    return firstOf({find(properties, key), find(clientProperties, key)});
}

std::int32_t PulseRecording::claimedPid() const {
    // What the kernel told the server of a client is better than what the client says of itself,
    // except for those who came through the server's PulseAudio side: it is that side's own.
    const bool isNative = find(clientProperties, "client.api") != "pipewire-pulse";
    const auto text = firstOf({isNative ? find(clientProperties, "pipewire.sec.pid") : "",
                               property("application.process.id")});
    std::int32_t pid = 0;
    std::from_chars(text.data(), text.data() + text.size(), pid);
    return pid;
}

std::optional<MicrophoneUser> PulseRecording::user(std::int32_t ownPid,
                                                   const std::filesystem::path& processes) const {
    if (!client) return std::nullopt;

    MicrophoneUser user;
    const auto binary = lastComponent(withoutRemark(property("application.process.binary")));
    const std::int32_t pid = claimedPid();
    const std::string path = pid > 0 ? executable(processes, pid) : "";
    if (!path.empty() && (binary.empty() || binary == lastComponent(path))) {
        user.pid = pid;
        user.path = path;
    } else {
        user.path = binary;
    }
    if (user.pid == ownPid && ownPid != 0) return std::nullopt;
    if (std::ranges::count(audioServers, lastComponent(user.path)) > 0) return std::nullopt;

    user.bundleID =
        firstOf({property("application.id"), property("pipewire.access.portal.app_id")});
    user.name = firstOf({property("application.name"), binary});
    user.recordsPlayback = isFromMonitor || property("stream.capture.sink") == "true";
    user.metersLevel = resampleMethod == "peaks" || property("stream.monitor") == "true" ||
                       property("media.name") == "Peak detect";
    return user;
}

}  // namespace tendel

#include "presence/CallMonitor.h"

#include <algorithm>
#include <string_view>

namespace tendel {

namespace {

std::string_view lastComponent(std::string_view path) {
    return path.substr(path.rfind('/') + 1);
}

bool beginsWithAny(std::string_view text, const std::vector<std::string>& prefixes) {
    return std::ranges::any_of(prefixes,
                               [&](const std::string& prefix) { return text.starts_with(prefix); });
}

}  // namespace

MicrophonePolicy MicrophonePolicy::macOS() {
    return {.countedNames = {"com.apple.FaceTime", "FaceTime", "avconferenced", "com.apple.Safari",
                             "Safari", "com.apple.QuickTimePlayerX", "QuickTime Player",
                             "com.apple.VoiceMemos", "VoiceMemos"},
            .countedExecutablePrefix = "com.apple.WebKit.",
            .ignoredBundlePrefixes = {"com.apple."},
            .ignoredPathPrefixes = {"/System/", "/usr/libexec/", "/usr/sbin/", "/usr/bin/"}};
}

MicrophonePolicy MicrophonePolicy::forLinux() {
    return {.ignoresPlaybackAndMeters = true,
            .ignoredNames = {
                // Sound settings and meters, by application identifier, executable or own name.
                "com.saivert.pwvucontrol", "gnome-control-center", "kcmshell5", "kmix",
                "mate-volume-control", "mate-volume-control-status-icon", "ncpamixer",
                "org.PulseAudio.pavucontrol", "org.gnome.Settings", "org.gnome.VolumeControl",
                "org.kde.kmix", "org.kde.plasma-pa", "org.kde.systemsettings",
                "org.pulseaudio.pavucontrol", "pamix", "pasystray", "pavucontrol", "pavucontrol-qt",
                "plasma-pa", "pnmixer", "pulsemixer", "pwvucontrol", "systemsettings",
                "systemsettings5", "unity-control-center", "cinnamon-settings", "veromix",
                "volumeicon", "xfce4-mixer", "xfce4-pulseaudio-plugin",
                // What draws the sound.
                "cava", "glava", "projectM", "xava",
                // Effects, patch bays and the servers themselves.
                "NoiseTorch", "cadmus", "calfjackhost", "carla", "com.github.wwmm.easyeffects",
                "com.github.wwmm.pulseeffects", "easyeffects", "helvum", "jack_mixer", "jackd",
                "jackdbus", "jamesdsp", "me.timschneeberger.jdsp4linux", "noisetorch",
                "org.pipewire.Helvum", "org.rncbc.qpwgraph", "patchage", "pipewire",
                "pipewire-media-session", "pipewire-pulse", "pulseaudio", "pulseeffects",
                "qpwgraph", "wireplumber",
                // The desktop's own shells, panels and daemons.
                "budgie-panel", "cinnamon", "cinnamon-settings-daemon", "csd-media-keys",
                "gnome-settings-daemon", "gnome-shell", "gsd-media-keys", "i3status", "i3status-rs",
                "kwin_wayland", "kwin_x11", "lxqt-panel", "mate-panel", "mate-settings-daemon",
                "org.gnome.Shell", "org.kde.plasmashell", "plasmashell", "polybar", "sway",
                "waybar", "xfce4-panel",
                // Speech.
                "brltty", "espeak", "espeak-ng", "orca", "sd_espeak-ng", "speech-dispatcher"}};
}

bool MicrophonePolicy::countsAsCall(const MicrophoneUser& user) const {
    const std::string executable(lastComponent(user.path));
    const auto isOneOf = [&](const std::set<std::string>& names) {
        return names.contains(user.bundleID) || names.contains(executable);
    };
    if (ignoresPlaybackAndMeters && (user.recordsPlayback || user.metersLevel)) return false;
    if (isOneOf(countedNames)) return true;
    if (!countedExecutablePrefix.empty() && executable.starts_with(countedExecutablePrefix))
        return true;
    if (isOneOf(ignoredNames) || ignoredNames.contains(user.name)) return false;
    return !beginsWithAny(user.bundleID, ignoredBundlePrefixes) &&
           !beginsWithAny(user.path, ignoredPathPrefixes);
}

CallMonitor::CallMonitor(std::vector<MicrophoneSource*> microphones,
                         std::vector<CameraSource*> cameras, MicrophonePolicy policy,
                         std::int32_t ownPid)
    : microphones_(std::move(microphones)),
      cameras_(std::move(cameras)),
      policy_(std::move(policy)),
      ownPid_(ownPid) {}

std::optional<std::vector<MicrophoneUser>> CallMonitor::microphoneUsers() const {
    std::optional<std::vector<MicrophoneUser>> all;
    for (const MicrophoneSource* source : microphones_) {
        const auto users = source->users();
        if (!users) continue;
        if (!all) all.emplace();
        all->insert(all->end(), users->begin(), users->end());
    }
    return all;
}

std::optional<bool> CallMonitor::isMicrophoneInUse() const {
    const auto users = microphoneUsers();
    if (!users) return std::nullopt;
    return std::ranges::any_of(*users, [this](const MicrophoneUser& user) {
        return user.pid != ownPid_ && policy_.countsAsCall(user);
    });
}

std::optional<bool> CallMonitor::isCameraInUse() const {
    bool isKnown = false;
    for (const CameraSource* source : cameras_) {
        const auto cameras = source->running();
        if (!cameras) continue;
        isKnown = true;
        if (std::ranges::any_of(*cameras, [](std::optional<bool> runs) { return runs == true; }))
            return true;
    }
    return isKnown ? std::optional(false) : std::nullopt;
}

}  // namespace tendel

#pragma once

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "base/Signal.h"

namespace tendel {

// A program that records from a sound source now.
struct MicrophoneUser {
    std::int32_t pid = 0;    // 0: not known
    std::string bundleID{};  // the application's identifier; empty when there is none
    std::string path{};      // of the executable, its name alone when only that is known; or empty
    std::string name{};      // what the program calls itself; empty when it does not
    bool recordsPlayback = false;  // what plays on this computer, not what is said
    bool metersLevel = false;      // only the loudness, to draw it

    friend bool operator==(const MicrophoneUser&, const MicrophoneUser&) = default;
};

// Which programs' recording means that the user talks to somebody or records themselves. The first
// rule that applies decides, from top to bottom; texts are compared exactly.
struct MicrophonePolicy {
    bool ignoresPlaybackAndMeters = false;
    std::set<std::string> countedNames{};   // application identifiers or executables' names
    std::string countedExecutablePrefix{};  // empty: no such rule
    std::set<std::string> ignoredNames{};   // application identifiers, executables' or own names
    std::vector<std::string> ignoredBundlePrefixes{};
    std::vector<std::string> ignoredPathPrefixes{};

    bool countsAsCall(const MicrophoneUser& user) const;

    static MicrophonePolicy macOS();
    // Nearly every program is one to talk with or to record with; what only listens to draw a
    // level, to change a voice or to serve the desktop is listed.
    static MicrophonePolicy forLinux();
};

// Main thread only, told by events.
class MicrophoneSource {
public:
    virtual ~MicrophoneSource() = default;
    // Everyone who records now (a stream that is paused does not); nothing while it cannot tell.
    virtual std::optional<std::vector<MicrophoneUser>> users() const = 0;
    Signal<> changed;
};

// Main thread only, told by events.
class CameraSource {
public:
    virtual ~CameraSource() = default;
    // For each camera whether any program has it running, nothing for one that cannot tell;
    // nothing at all while the cameras cannot be listed.
    virtual std::optional<std::vector<std::optional<bool>>> running() const = 0;
    Signal<> changed;
};

// Whether the user is in a call: a microphone is in use by a program that matters, or any camera
// is. Keeps no history. Main thread only; the sources must outlive it.
class CallMonitor {
public:
    using MicrophoneUser = tendel::MicrophoneUser;

    CallMonitor(std::vector<MicrophoneSource*> microphones, std::vector<CameraSource*> cameras,
                MicrophonePolicy policy, std::int32_t ownPid);

    // Nothing when no source can tell.
    std::optional<bool> isMicrophoneInUse() const;
    std::optional<bool> isCameraInUse() const;
    std::optional<std::vector<MicrophoneUser>> microphoneUsers() const;

private:
    std::vector<MicrophoneSource*> microphones_;
    std::vector<CameraSource*> cameras_;
    MicrophonePolicy policy_;
    std::int32_t ownPid_;
};

}  // namespace tendel

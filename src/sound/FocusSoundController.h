#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "base/Observable.h"
#include "base/Timer.h"
#include "model/Presence.h"
#include "sound/FocusSoundRules.h"
#include "sound/SoundPlaying.h"
#include "storage/AppSettings.h"

namespace tendel {

// Has the sounds played that belong to what the user does now, and hands over only differences.
// Main thread only; what it is given must outlive it.
class FocusSoundController {
public:
    FocusSoundController(AppSettings& settings, EventLoop& loop, SoundPlaying& player,
                         std::function<std::optional<FocusSession>()> session);

    // Looks again; a difference fades over so many seconds.
    void refresh(double fade);
    void sessionDidChange();  // also ends a preview
    void presenceDidChange(Presence presence);
    void toggleMute();
    // A mix was changed by the user: without a session its row can be heard for a while.
    void edited(FocusSoundRules::Row row);
    // Without a session the row is heard until a while after the last call.
    void startPreview(FocusSoundRules::Row row);
    void cancelPreview();

    const Observable<bool>& isMuted() const { return isMuted_; }
    const Observable<std::optional<FocusSoundRules::Row>>& preview() const { return preview_; }
    bool isPlaying() const { return !playing_.empty(); }

    std::function<void()> onChange = [] {};                   // of the mute switch or the preview
    std::function<void(bool)> onPlayingChange = [](bool) {};  // whether anything plays now

private:
    FocusSoundRules::Input input() const;
    void setPreview(std::optional<FocusSoundRules::Row> row, double fade);

    AppSettings& settings_;
    SoundPlaying& player_;
    std::function<std::optional<FocusSession>()> session_;
    Observable<bool> isMuted_;
    Observable<std::optional<FocusSoundRules::Row>> preview_;
    bool isAwayFromMac_ = false;
    bool isBusy_ = false;
    SoundLevels playing_;
    Timer previewEnd_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

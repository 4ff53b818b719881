#include "platform/linux/pulse/PulseOutput.h"

#include <utility>

namespace tendel {

void PulseOutput::start(AudioRenderer& renderer) {
    session_.reset(new Session{renderer, {loop_, longestDelay_, [this] { connect(); }}});
    connect();
}

void PulseOutput::stop() {
    session_.reset();
}

void PulseOutput::connect() {
    session_->playback.reset();
    session_->playback = std::make_unique<PulsePlayback>(
        loop_, session_->renderer,
        PulsePlayback::Listener{.playing = [this] { playing(); },
                                .noOutput = [this](const auto& why) { interrupted(why); },
                                .lost =
                                    [this](const auto& why) {
                                        session_->playback.reset();
                                        interrupted(why);
                                    }});
}

void PulseOutput::playing() {
    session_->reconnection.connected();
    session_->isPlaying = true;
    session_->hasToldFailure = false;
    if (std::exchange(session_->hasPlayed, true)) restarted.emit();
}

void PulseOutput::interrupted(const std::string& why) {
    session_->reconnection.lost();
    // That it went away is nothing to tell if it can be reached again at once.
    if (std::exchange(session_->isPlaying, false)) return;
    if (!std::exchange(session_->hasToldFailure, true)) failed.emit(why);
}

}  // namespace tendel

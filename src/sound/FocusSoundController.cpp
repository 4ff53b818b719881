#include "sound/FocusSoundController.h"

#include <utility>

namespace tendel {

namespace {

// In seconds. A phase that begins or ends is not to startle; a slider is to be heard at once, yet
// without a step.
constexpr double sessionFade = 2;
constexpr double presenceFade = 1;
constexpr double muteFade = 1;
constexpr double editFade = 0.3;
constexpr double previewEndFade = 2;
// Long enough to hear the slow swells of a sound after the last touch of its slider.
constexpr Duration previewLength = std::chrono::seconds(8);

}  // namespace

FocusSoundController::FocusSoundController(AppSettings& settings, EventLoop& loop,
                                           SoundPlaying& player,
                                           std::function<std::optional<FocusSession>()> session)
    : settings_(settings), player_(player), session_(std::move(session)), previewEnd_(loop) {
    const auto mixChanged = [this] { refresh(editFade); };
    subscriptions_.push_back(settings_.focusMix.observe(mixChanged));
    subscriptions_.push_back(settings_.breakMix.observe(mixChanged));
}

FocusSoundRules::Input FocusSoundController::input() const {
    FocusSoundRules::Input input{.focusMix = *settings_.focusMix,
                                 .breakMix = *settings_.breakMix,
                                 .isMuted = *isMuted_,
                                 .isAwayFromMac = isAwayFromMac_,
                                 .isBusy = isBusy_,
                                 .preview = *preview_};
    if (const auto session = session_()) {
        input.phase = session->phase;
        input.isPaused = session->isPaused();
    }
    return input;
}

void FocusSoundController::refresh(double fade) {
    auto wanted = FocusSoundRules::wanted(input());
    if (wanted == playing_) return;
    playing_ = std::move(wanted);
    player_.play(playing_, fade);
    onPlayingChange(isPlaying());
}

void FocusSoundController::sessionDidChange() {
    previewEnd_.stop();
    setPreview(std::nullopt, sessionFade);
}

void FocusSoundController::presenceDidChange(Presence presence) {
    isAwayFromMac_ = presence == Presence::away;
    isBusy_ = tendel::isBusy(presence);
    refresh(presenceFade);
}

void FocusSoundController::toggleMute() {
    isMuted_.set(!*isMuted_);
    refresh(muteFade);
    onChange();
}

void FocusSoundController::edited(FocusSoundRules::Row row) {
    startPreview(row);
}

void FocusSoundController::startPreview(FocusSoundRules::Row row) {
    // During a session a mix is heard in its own phase.
    if (session_()) return;
    previewEnd_.start(previewLength, [this] { setPreview(std::nullopt, previewEndFade); });
    setPreview(row, editFade);
}

void FocusSoundController::cancelPreview() {
    previewEnd_.stop();
    setPreview(std::nullopt, editFade);
}

void FocusSoundController::setPreview(std::optional<FocusSoundRules::Row> row, double fade) {
    const bool isNew = row != *preview_;
    preview_.set(row);
    refresh(fade);
    if (isNew) onChange();
}

}  // namespace tendel

#include "focus/FocusTimer.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "base/Log.h"

namespace tendel {

namespace {

using Phase = FocusSession::Phase;

// Between the ticks of a session in which nothing runs.
constexpr Duration idleTick = std::chrono::seconds(1800);
constexpr int longestPhaseMinutes = 24 * 60;
constexpr int extensionMinutes = static_cast<int>(focusExtensionSeconds) / 60;

// Settings can be edited by hand.
FocusPlan sensible(FocusPlan plan) {
    plan.focusMinutes = std::clamp(plan.focusMinutes, 1, longestPhaseMinutes);
    plan.breakMinutes = std::clamp(plan.breakMinutes, 1, longestPhaseMinutes);
    return plan;
}

int wholeSeconds(double seconds) {
    return static_cast<int>(std::lround(std::max(seconds, 0.0)));
}

}  // namespace

FocusTimer::FocusTimer(AppSettings& settings, Store& store, EventLoop& loop,
                       ReminderScheduler& scheduler, SystemSounds& sounds,
                       std::function<Presence()> presence)
    : settings_(settings),
      store_(store),
      loop_(loop),
      scheduler_(scheduler),
      sounds_(sounds),
      presence_(std::move(presence)),
      wallAhead_(loop.now().time_since_epoch() - loop.monotonicNow().time_since_epoch()),
      now_(loop.now()),
      clockChanged_(loop.wallClockChanged.connect([this] { wallClockChanged(); })) {}

Instant FocusTimer::time() const {
    return Instant(loop_.monotonicNow().time_since_epoch() + wallAhead_);
}

void FocusTimer::wallClockChanged() {
    const Duration step = loop_.now() - time();
    wallAhead_ += step;
    if (!*session_) return;
    auto moved = **session_;
    moved.phaseStartedAt += step;
    if (moved.endsAt) *moved.endsAt += step;
    if (block_) {
        block_->start += step;
        if (block_->end) *block_->end += step;
    }
    session_.set(std::move(moved));
    update();
}

void FocusTimer::start() {
    if (*session_ && (*session_)->phase == Phase::focus) endBlock(**session_, time());
    FocusSession session{.plan = sensible(*settings_.focusPlan)};
    session.begin(Phase::focus, time(), session.plan.focusMinutes * 60.0);
    beginBlock(session);
    become(session);
}

void FocusTimer::pause() {
    if (!*session_ || !(*session_)->endsAt) return update();
    auto session = **session_;
    session.pausedRemaining = session.remaining(time());
    session.endsAt.reset();
    if (session.phase == Phase::focus) {
        // A crash during the pause, or after it, shall not lose what came before.
        countIntoBlock(session, time());
        saveBlock();
    }
    become(session);
}

void FocusTimer::resume() {
    if (!*session_ || !(*session_)->isPaused()) return update();
    auto session = **session_;
    session.endsAt = time() + seconds(*session.pausedRemaining);
    session.pausedRemaining.reset();
    become(session);
}

void FocusTimer::skip() {
    if (!*session_) return update();
    auto session = **session_;
    switch (session.phase) {
        case Phase::focus:
            endBlock(session, time());
            session.endFocus(time());
            break;
        case Phase::shortBreak:
        case Phase::longBreak:
            session.begin(Phase::ready, time(), 0);
            break;
        case Phase::ready:
            return startNextFocus();
    }
    become(session);
}

void FocusTimer::startNextFocus() {
    if (!*session_ || (*session_)->phase != Phase::ready) return update();
    auto session = **session_;
    ++session.round;
    session.begin(Phase::focus, time(), session.plan.focusMinutes * 60.0);
    beginBlock(session);
    become(session);
}

void FocusTimer::extendFocus() {
    if (!*session_ || !(*session_)->isBreak()) return update();
    auto session = **session_;
    session.begin(Phase::focus, time(), focusExtensionSeconds);
    session.isExtension = true;
    blockSecondsBefore_ = block_->focusedSeconds;
    block_->end.reset();
    block_->plannedMinutes += extensionMinutes;
    saveBlock();
    become(session);
}

void FocusTimer::extendBreak() {
    if (!*session_ || (*session_)->phase != Phase::ready) return update();
    auto session = **session_;
    session.begin(Phase::shortBreak, time(), focusExtensionSeconds);
    become(session);
}

void FocusTimer::stop() {
    if (!*session_) return update();
    if ((*session_)->phase == Phase::focus) endBlock(**session_, time());
    become(std::nullopt);
}

void FocusTimer::perform(FocusAlertAction action) {
    switch (action) {
        case FocusAlertAction::extendFocus:
            return extendFocus();
        case FocusAlertAction::skipBreak:
            return skip();
        case FocusAlertAction::startFocus:
            return startNextFocus();
        case FocusAlertAction::extendBreak:
            return extendBreak();
    }
}

void FocusTimer::presenceDidChange(Presence presence) {
    if (presence == Presence::present && pendingAlert_) {
        const FocusAlert alert = *std::exchange(pendingAlert_, std::nullopt);
        if (presenter && stillApplies(alert)) presenter->presentFocusAlert(alert);
    }
    update();
}

bool FocusTimer::stillApplies(const FocusAlert& alert) const {
    if (!*session_) return false;
    const FocusSession& session = **session_;
    return alert.kind == FocusAlert::Kind::breakEnded ? session.phase == Phase::ready
                                                      : session.isBreak() && !session.isPaused();
}

void FocusTimer::appWillTerminate() {
    if (*session_ && (*session_)->phase == Phase::focus)
        endBlock(**session_, time());
    else if (!isBlockSaved_ || !unsaved_.empty())
        saveBlock();
}

void FocusTimer::closeBlocksLeftRunning() {
    std::vector<FocusBlock> left = store_.focusBlocksWithoutEnd();
    if (left.empty()) return;
    for (FocusBlock& block : left) {
        const Instant planned = block.start + std::chrono::minutes(block.plannedMinutes);
        block.end = std::max(std::min(planned, time()), block.start);
        // Of a block that was paused or extended nobody knows for how long it ran on afterwards;
        // what it had until then was saved.
        if (block.focusedSeconds == 0)
            block.focusedSeconds = wholeSeconds(toSeconds(*block.end - block.start));
    }
    const auto saved = store_.save([&](Store::Writer& writer) {
        for (const FocusBlock& block : left)
            writer.update(block);
    });
    if (!saved) log(LogLevel::error, "focus", saved.error());
}

void FocusTimer::become(std::optional<FocusSession> next) {
    session_.set(std::move(next));
    withdrawAlerts();
    update();
}

void FocusTimer::withdrawAlerts() {
    pendingAlert_.reset();
    if (presenter) presenter->removeFocusAlerts();
}

void FocusTimer::tick() {
    const Instant at = time();
    auto session = *session_;
    // After sleep several ends may have passed.
    while (session && session->endsAt && at >= *session->endsAt) {
        const Instant end = *session->endsAt;
        if (session->isBreak()) {
            session->begin(Phase::ready, end, 0);
        } else {
            endBlock(*session, end);
            session->endFocus(end);
        }
    }
    if (session != *session_) {
        session_.set(session);
        // Before reminders are released, so that it is shown first.
        announce(*session);
    }
    update();
}

void FocusTimer::announce(const FocusSession& session) {
    FocusAlert alert;
    if (session.phase != Phase::ready)
        alert = {.kind = FocusAlert::Kind::focusEnded,
                 .breakEndsAt = *session.endsAt,
                 .minutes = static_cast<int>(session.phaseDuration / 60),
                 .isLong = session.phase == Phase::longBreak};
    const Presence presence = presence_();
    if (*settings_.playsBreakEndSound && !isBusy(presence))
        sounds_.play(alert.kind == FocusAlert::Kind::focusEnded ? "Glass" : "Hero");
    if (presence != Presence::present)
        pendingAlert_ = alert;
    else if (presenter)
        presenter->presentFocusAlert(alert);
}

void FocusTimer::update() {
    now_.set(time());
    scheduleTick();
    scheduler_.setHoldingReminders(*session_ && (*session_)->isFocusing());
    onUpdate();
}

void FocusTimer::scheduleTick() {
    ticker_.stop();
    if (!*session_) return;
    const auto tickLater = [this](Duration delay) { ticker_.start(delay, [this] { tick(); }); };
    if (!(*session_)->endsAt) return tickLater(idleTick);
    // Counted back from the end, so that the last tick falls on it.
    const Duration left = *(*session_)->endsAt - time();
    const Duration beyondMinute = left % std::chrono::minutes(1);
    tickLater(beyondMinute > Duration::zero() ? beyondMinute
                                              : std::min<Duration>(left, std::chrono::minutes(1)));
}

void FocusTimer::beginBlock(const FocusSession& session) {
    if (block_ && !isBlockSaved_) unsaved_.push_back(*block_);
    blockSecondsBefore_ = 0;
    block_.emplace();
    block_->start = session.phaseStartedAt;
    block_->plannedMinutes = session.plan.focusMinutes;
    saveBlock();
}

void FocusTimer::countIntoBlock(const FocusSession& session, Instant at) {
    block_->focusedSeconds =
        blockSecondsBefore_ + wholeSeconds(session.phaseDuration - session.remaining(at));
}

void FocusTimer::endBlock(const FocusSession& session, Instant at) {
    countIntoBlock(session, at);
    // Whoever is late does not make the phase longer.
    block_->end = session.endsAt ? std::min(at, *session.endsAt) : at;
    // Whether the plan's focus phase ran to its end, an extension does not change.
    if (!session.isExtension) block_->finished = session.endsAt && at >= *session.endsAt;
    saveBlock();
}

void FocusTimer::saveBlock() {
    auto blocks = unsaved_;
    blocks.push_back(*block_);
    const auto saved = store_.save([&](Store::Writer& writer) {
        for (FocusBlock& block : blocks) {
            if (block.id == 0)
                block.id = writer.insert(block);
            else
                writer.update(block);
        }
    });
    isBlockSaved_ = static_cast<bool>(saved);
    if (!saved) return log(LogLevel::error, "focus", saved.error());
    // The rows have their identifiers now.
    block_ = blocks.back();
    unsaved_.clear();
}

}  // namespace tendel

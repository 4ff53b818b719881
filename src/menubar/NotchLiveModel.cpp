#include "menubar/NotchLiveModel.h"

#include <utility>

namespace tendel {

namespace {

using Phase = NotchLivePhase;
namespace Motion = NotchAlertMotion;

// The shape is on its way before the text comes, in seconds, as it is with the alert.
constexpr double contentDelay = 0.12;
constexpr double hideTime = 0.45;

}  // namespace

NotchLiveModel::NotchLiveModel(EventLoop& loop)
    : loop_(loop), clockChanged_(loop.wallClockChanged.connect([this] { tick(); })) {}

void NotchLiveModel::show(LiveActivity activity) {
    if (phase_ != Phase::hidden && activity_ == activity) return;
    activity_ = std::move(activity);
    if (phase_ == Phase::hidden) return moveTo(Phase::pill, Motion::expand);
    tick();
    emit(Motion::swap);
}

void NotchLiveModel::hide() {
    if (phase_ != Phase::hidden) moveTo(Phase::hidden, Motion::collapse);
}

void NotchLiveModel::openCard() {
    if (phase_ == Phase::pill) moveTo(Phase::card, Motion::expand);
}

void NotchLiveModel::closeCard() {
    if (phase_ == Phase::card) moveTo(Phase::pill, Motion::collapse);
}

void NotchLiveModel::setCovered(bool isCovered) {
    if (isCovered == isCovered_) return;
    isCovered_ = isCovered;
    if (phase_ == Phase::card) return closeCard();
    tick();
    changed.emit(std::nullopt);
}

void NotchLiveModel::moveTo(Phase phase, const MotionCurve& curve) {
    phase_ = phase;
    showsContent_ = reduceMotion && phase != Phase::hidden;
    if (phase == Phase::hidden)
        after(hideTime, [this] {
            activity_.reset();
            onHidden();
        });
    else if (!showsContent_)
        after(contentDelay, [this] {
            showsContent_ = true;
            emit(Motion::contentIn);
        });
    else
        transition_.stop();
    tick();
    emit(curve);
}

void NotchLiveModel::after(double delay, std::function<void()> step) {
    transition_.start(seconds(delay / speed), std::move(step));
}

void NotchLiveModel::emit(const MotionCurve& curve) {
    changed.emit(reduceMotion ? Motion::reduced : curve);
}

void NotchLiveModel::tick() {
    ticker_.stop();
    if (phase_ == Phase::hidden || isCovered_) return;
    const Instant now = loop_.now();
    const auto detail =
        phase_ == Phase::card ? LiveActivity::Detail::full : LiveActivity::Detail::compact;
    if (const auto wait = activity_->untilNextChange(now, detail))
        ticker_.start(*wait, [this] { tick(); });
    Time time{activity_->timeText(now, detail), activity_->progressLeft(now)};
    if (time == time_) return;
    time_ = std::move(time);
    timeChanged.emit();
}

}  // namespace tendel

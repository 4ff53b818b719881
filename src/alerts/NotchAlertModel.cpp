#include "alerts/NotchAlertModel.h"

#include <utility>

namespace tendel {

namespace {

using Phase = NotchAlertPhase;
namespace Motion = NotchAlertMotion;

// How long each step lasts before the next begins, in seconds. They are shorter than the curves, so
// that one motion flows into the next.
constexpr double bulgeTime = 0.28;
constexpr double dropTime = 0.14;
constexpr double contentDelay = 0.12;
constexpr double contentOutTime = 0.08;
constexpr double shrinkToDropTime = 0.26;
constexpr double hideTime = 0.45;
constexpr double completionTime = 0.75;

}  // namespace

bool NotchAlertModel::isOpen() const {
    return (phase_ == Phase::expanded || phase_ == Phase::done) && showsContent_;
}

void NotchAlertModel::present(NotchAlertContent content) {
    transition_.stop();
    next_.reset();
    content_ = std::move(content);
    showsCompletion_ = false;
    if (!isOpen()) {
        expand();
        return;
    }
    const bool wasCompleted = phase_ == Phase::done;
    phase_ = Phase::expanded;
    emit(wasCompleted ? Motion::expand : Motion::swap);
}

void NotchAlertModel::complete(std::optional<NotchAlertContent> next, std::string message) {
    next_ = std::move(next);
    completionMessage_ = std::move(message);
    showsCompletion_ = true;
    phase_ = Phase::done;
    after(completionTime, [this] {
        if (next_)
            present(*std::exchange(next_, std::nullopt));
        else
            collapse();
    });
    emit(Motion::completion);
}

void NotchAlertModel::dismiss() {
    if (phase_ == Phase::hidden) return;
    collapse();
}

void NotchAlertModel::refresh(const NotchAlertContent& content) {
    if (next_ && next_->id == content.id) {
        next_ = content;
    } else if (content_ && content_->id == content.id && content_ != content) {
        content_ = content;
        changed.emit(std::nullopt);
    }
}

void NotchAlertModel::setQueuedCount(int count) {
    if (next_) next_->queuedCount = count;
    if (!content_ || content_->queuedCount == count) return;
    content_->queuedCount = count;
    changed.emit(std::nullopt);
}

void NotchAlertModel::setHovered(bool isHovered) {
    isHovered_ = isHovered;
}

void NotchAlertModel::expand() {
    const auto openAtOnce = [this](const MotionCurve& curve) {
        phase_ = Phase::expanded;
        showsContent_ = true;
        emit(curve);
    };
    if (reduceMotion) return openAtOnce(Motion::reduced);
    if (style == AlertStyle::compact) return openAtOnce(Motion::compactGrow);

    phase_ = Phase::peek;
    after(hasNotch ? bulgeTime : dropTime, [this] {
        phase_ = Phase::expanded;
        after(contentDelay, [this] {
            showsContent_ = true;
            emit(Motion::contentIn);
        });
        emit(Motion::expand);
    });
    emit(hasNotch ? Motion::bulge : Motion::drop);
}

void NotchAlertModel::collapse() {
    showsContent_ = false;
    if (reduceMotion) return hide(Motion::reduced);
    if (style == AlertStyle::compact) return hide(Motion::compactShrink);

    after(contentOutTime, [this] {
        if (hasNotch) return hide(Motion::collapse);
        phase_ = Phase::peek;
        after(shrinkToDropTime, [this] { hide(Motion::dropOut); });
        emit(Motion::collapseToDrop);
    });
    emit(Motion::contentOut);
}

void NotchAlertModel::hide(const MotionCurve& curve) {
    phase_ = Phase::hidden;
    after(hideTime, [this] {
        // A pointer that rests there will not be seen leaving what is gone.
        isHovered_ = false;
        onHidden();
    });
    emit(curve);
}

void NotchAlertModel::after(double delay, std::function<void()> step) {
    transition_.start(seconds(delay / speed), std::move(step));
}

void NotchAlertModel::emit(const MotionCurve& curve) {
    changed.emit(reduceMotion ? Motion::reduced : curve);
}

}  // namespace tendel

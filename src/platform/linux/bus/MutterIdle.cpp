#include "platform/linux/bus/MutterIdle.h"

#include <algorithm>
#include <cmath>

namespace tendel {

using namespace Qt::StringLiterals;

namespace {

BusObject core() {
    return {u"/org/gnome/Mutter/IdleMonitor/Core"_s, u"org.gnome.Mutter.IdleMonitor"_s};
}

}  // namespace

MutterIdle::MutterIdle(BusConnection& session, EventLoop& loop)
    : mutter_(session, u"org.gnome.Mutter.IdleMonitor"_s), loop_(loop) {
    serviceChanged_ = mutter_.changed.connect([this] { askAfresh(); });
    askAfresh();
}

std::optional<double> MutterIdle::idleSeconds() {
    if (!isTold_) return std::nullopt;
    return lastInput_ ? toSeconds(loop_.monotonicNow() - *lastInput_) : 0;
}

void MutterIdle::watch(std::optional<double> thresholdSeconds) {
    if (thresholdSeconds == threshold_) return;
    threshold_ = thresholdSeconds;
    remove(idleWatch_);
    // What was known goes on holding until Mutter has said where the new threshold stands.
    ask();
}

void MutterIdle::askAfresh() {
    idleWatch_ = inputWatch_ = firedEarly_ = std::nullopt;
    mutter_.listen(core(), u"WatchFired"_s, [this](const QDBusMessage& signal) {
        if (const auto watch = firstArgument<uint>(signal)) watchFired(*watch);
    });
    ask();
    stand(std::nullopt);
}

void MutterIdle::ask() {
    if (!threshold_) return measure();
    const double threshold = *threshold_;
    const auto milliseconds = static_cast<qulonglong>(std::max(std::ceil(threshold * 1000), 1.0));
    mutter_.call(core(), u"AddIdleWatch"_s, {milliseconds},
                 [this, threshold](const QDBusMessage& reply) {
                     auto watch = firstArgument<uint>(reply);
                     if (threshold_ != threshold) return remove(watch);
                     if (!watch) return stand(std::nullopt);
                     remove(idleWatch_);
                     idleWatch_ = watch;
                     measure();
                 });
}

void MutterIdle::addInputWatch() {
    mutter_.call(core(), u"AddUserActiveWatch"_s, {}, [this](const QDBusMessage& reply) {
        auto watch = firstArgument<uint>(reply);
        if (!lastInput_) return remove(watch);
        if (!watch) return stand(std::nullopt);
        inputWatch_ = watch;
        // The user may have come back before there was a watch, or before we knew its number.
        if (firedEarly_ == watch) return watchFired(*watch);
        measure();
    });
}

void MutterIdle::measure() {
    mutter_.call(core(), u"GetIdletime"_s, {}, [this](const QDBusMessage& reply) {
        const auto idle = firstArgument<qulonglong>(reply);
        stand(idle ? std::optional<Duration>(std::chrono::milliseconds(*idle)) : std::nullopt);
    });
}

// Takes over for how long the user has been idle; nothing when that is not known any more.
void MutterIdle::stand(std::optional<Duration> idle) {
    const bool wasTold = std::exchange(isTold_, idle.has_value());
    const bool wasIdle = lastInput_.has_value();
    lastInput_.reset();
    if (idle && threshold_ && toSeconds(*idle) >= *threshold_)
        lastInput_ = loop_.monotonicNow() - *idle;
    if (lastInput_ && !wasIdle) addInputWatch();
    if (!lastInput_) remove(inputWatch_);
    if (isTold_ != wasTold || lastInput_.has_value() != wasIdle) crossed.emit();
}

void MutterIdle::watchFired(uint watch) {
    if (watch == idleWatch_) {
        if (!lastInput_) stand(seconds(*threshold_));
    } else if (watch == inputWatch_) {
        inputWatch_.reset();
        stand(Duration::zero());
    } else {
        firedEarly_ = watch;
    }
}

void MutterIdle::remove(std::optional<uint>& watch) {
    if (watch) mutter_.call(core(), u"RemoveWatch"_s, {*watch}, [](const QDBusMessage&) {});
    watch.reset();
}

}  // namespace tendel

#include "presence/UserPresence.h"

#include <algorithm>

namespace tendel {

namespace {

using std::chrono::seconds;

constexpr Duration longestCall = std::chrono::hours(2);
constexpr Duration busyPoll = seconds(15);
constexpr Duration filmPoll = seconds(30);
// Lands just past the moment at which the threshold is reached when no input comes.
constexpr Duration pastThreshold = seconds(1);
constexpr Duration inputPoll = seconds(2);

}  // namespace

Presence UserPresence::Rules::cappingLongCalls(Presence found,
                                               std::optional<MonotonicInstant>& callStart,
                                               MonotonicInstant now) {
    if (found != Presence::busyCall) {
        callStart.reset();
        return found;
    }
    if (!callStart) callStart = now;
    return now - *callStart >= longestCall ? Presence::present : found;
}

UserPresence::UserPresence(AppSettings& settings, EventLoop& loop, const PresenceSources& sources)
    : settings_(settings),
      loop_(loop),
      idle_(sources.idle),
      activity_(sources.system),
      calls_(sources.microphones, sources.cameras, sources.microphonePolicy, sources.ownPid),
      wakeRequests_(sources.wakeRequests, sources.wakePolicy, sources.ownPid),
      fullScreen_(sources.windows, sources.topEdge, loop) {
    activity_.onAway = [this] {
        onSystemAwayChange(true);
        refresh();
    };
    activity_.onReturn = [this] {
        refresh();
        onSystemAwayChange(false);
    };
    const auto lookAgain = [this] { refresh(); };
    for (IdleSource* source : sources.idle)
        subscriptions_.push_back(source->crossed.connect(lookAgain));
    for (MicrophoneSource* source : sources.microphones)
        subscriptions_.push_back(source->changed.connect(lookAgain));
    for (CameraSource* source : sources.cameras)
        subscriptions_.push_back(source->changed.connect(lookAgain));
    for (WakeRequestSource* source : sources.wakeRequests)
        subscriptions_.push_back(source->changed.connect(lookAgain));
    watchIdle();
}

void UserPresence::observeSettings() {
    const auto lookAgain = [this] {
        watchIdle();
        refresh();
    };
    subscriptions_.push_back(settings_.countsAwayAsBreak.observe(lookAgain));
    subscriptions_.push_back(settings_.idleMinutes.observe(lookAgain));
    subscriptions_.push_back(settings_.holdsAlertsWhenBusy.observe(lookAgain));
}

void UserPresence::setWatchesForBusy(bool watches) {
    if (std::exchange(watchesForBusy_, watches) == watches) return;
    scheduleCheck(*state_, readIdle());
}

UserPresence::Rules::Options UserPresence::options() const {
    return {.countsAwayAsBreak = *settings_.countsAwayAsBreak,
            .idleSeconds = static_cast<double>(*settings_.idleMinutes * 60),
            .holdsAlertsWhenBusy = *settings_.holdsAlertsWhenBusy};
}

Presence UserPresence::refresh() {
    const Idle idle = readIdle();
    const Presence found =
        Rules::cappingLongCalls(evaluate(idle.seconds), callStart_, loop_.monotonicNow());
    scheduleCheck(found, idle);
    if (found != *state_) {
        state_.set(found);
        onChange(found);
    }
    return found;
}

Presence UserPresence::evaluate(double idle) const {
    if (activity_.isSystemAway()) return Presence::away;

    const Rules::Options now = options();
    const bool idleOver = now.countsAwayAsBreak && now.idleSeconds <= idle;
    if (!idleOver && !now.holdsAlertsWhenBusy) return Presence::present;

    const bool isInCall =
        calls_.isMicrophoneInUse().value_or(false) || calls_.isCameraInUse().value_or(false);
    // Who listens to a call need not touch anything.
    if (isInCall) return now.holdsAlertsWhenBusy ? Presence::busyCall : Presence::present;

    const auto requests = wakeRequests_.current();
    const bool isWatching = requests && wakeRequests_.keepsDisplayAwake(*requests);
    if (!isWatching) return idleOver ? Presence::away : Presence::present;
    return now.holdsAlertsWhenBusy && fullScreen_.isAnyFullScreen() ? Presence::busyPresentation
                                                                    : Presence::present;
}

void UserPresence::scheduleCheck(Presence presence, Idle idle) {
    check_.stop();
    const Rules::Options now = options();
    const auto poll =
        watchesForBusy_ && now.holdsAlertsWhenBusy ? std::optional(busyPoll) : std::nullopt;
    const auto lookAgain = [this] { refresh(); };
    switch (presence) {
        case Presence::present:
            if (!now.countsAwayAsBreak) {
                if (poll) check_.start(*poll, lookAgain);
            } else if (now.idleSeconds <= idle.seconds) {
                check_.start(poll.value_or(filmPoll), lookAgain);
            } else {
                const Duration crossing =
                    tendel::seconds(now.idleSeconds - idle.seconds) + pastThreshold;
                check_.start(poll ? std::min(crossing, *poll) : crossing, lookAgain);
            }
            break;
        case Presence::away:
            // Of the return of the whole system, and by most desktops of the first input, we are
            // told.
            if (!activity_.isSystemAway() && !idle.tellsCrossings) watchForInput();
            break;
        case Presence::busyCall:
        case Presence::busyPresentation:
            check_.start(busyPoll, lookAgain);
            break;
    }
}

void UserPresence::watchForInput() {
    check_.start(inputPoll, [this] {
        if (readIdle().seconds < options().idleSeconds)
            refresh();
        else
            watchForInput();
    });
}

UserPresence::Idle UserPresence::readIdle() const {
    for (IdleSource* source : idle_)
        if (const auto idle = source->idleSeconds())
            return {.seconds = *idle, .tellsCrossings = source->tellsCrossings()};
    return {};
}

void UserPresence::watchIdle() {
    const Rules::Options now = options();
    for (IdleSource* source : idle_)
        source->watch(now.countsAwayAsBreak ? std::optional(now.idleSeconds) : std::nullopt);
}

}  // namespace tendel

#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "base/Observable.h"
#include "base/Timer.h"
#include "model/Presence.h"
#include "presence/CallMonitor.h"
#include "presence/DisplayWakeRequests.h"
#include "presence/FullScreenMonitor.h"
#include "presence/IdleSource.h"
#include "presence/SystemActivity.h"
#include "storage/AppSettings.h"

namespace tendel {

// All that the platform can tell of the user, each fact from any number of sources; of those for
// idle time and windows the first that can tell is believed. Without sources everything is unknown.
struct PresenceSources {
    std::vector<IdleSource*> idle{};
    std::vector<SystemActivitySource*> system{};
    std::vector<MicrophoneSource*> microphones{};
    std::vector<CameraSource*> cameras{};
    std::vector<WakeRequestSource*> wakeRequests{};
    std::vector<WindowSource*> windows{};
    MicrophonePolicy microphonePolicy{};
    WakePolicy wakePolicy{};
    TopEdge topEdge = TopEdge::compared;
    std::int32_t ownPid = 0;
};

// Decides whether the user can be disturbed. It looks again when a source tells of a change, and
// otherwise on a schedule that follows from what it last saw: one second after the earliest moment
// at which the user could count as away, never on a fixed tick. Main thread only; what it is given
// must outlive it.
class UserPresence {
public:
    struct Rules {
        // Read afresh from the settings at each evaluation.
        struct Options {
            bool countsAwayAsBreak = true;
            double idleSeconds = 300;
            bool holdsAlertsWhenBusy = true;
        };
        // A call that has lasted two hours is taken for a microphone that somebody forgot.
        // `callStart` is set at a call's first evaluation and cleared when it is over.
        static Presence cappingLongCalls(Presence found, std::optional<MonotonicInstant>& callStart,
                                         MonotonicInstant now);
    };

    UserPresence(AppSettings& settings, EventLoop& loop, const PresenceSources& sources);

    // Evaluates, tells of a change and schedules the next look.
    Presence refresh();
    // Looks again whenever a setting that matters changes.
    void observeSettings();
    // Whether calls and presentations are to be noticed promptly: while an alert is up or sounds
    // play.
    void setWatchesForBusy(bool watches);

    const Observable<Presence>& state() const { return state_; }
    FullScreenMonitor& fullScreen() { return fullScreen_; }

    std::function<void(Presence)> onChange = [](Presence) {};
    // True when the computer as a whole goes away (lock, screen saver, display off, another
    // session), told before the state changes; false when it is back, told after.
    std::function<void(bool)> onSystemAwayChange = [](bool) {};

private:
    struct Idle {
        double seconds = 0;  // 0 also when nobody can tell
        bool tellsCrossings = false;
    };

    Rules::Options options() const;
    Presence evaluate(double idle) const;
    Idle readIdle() const;
    void watchIdle();
    void scheduleCheck(Presence presence, Idle idle);
    void watchForInput();

    AppSettings& settings_;
    EventLoop& loop_;
    std::vector<IdleSource*> idle_;
    SystemActivity activity_;
    CallMonitor calls_;
    DisplayWakeRequests wakeRequests_;
    FullScreenMonitor fullScreen_;

    Observable<Presence> state_{Presence::present};
    bool watchesForBusy_ = false;
    std::optional<MonotonicInstant> callStart_;
    Timer check_{loop_};
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

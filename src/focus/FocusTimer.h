#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "base/Observable.h"
#include "base/Timer.h"
#include "focus/FocusAlert.h"
#include "focus/FocusSession.h"
#include "focus/SystemSounds.h"
#include "model/FocusBlock.h"
#include "model/Presence.h"
#include "reminders/ReminderScheduler.h"
#include "storage/AppSettings.h"
#include "storage/Store.h"

namespace tendel {

// Runs focus phases and breaks, records each focus phase, holds reminders back meanwhile and
// announces the ends. Operations that do not apply in the present phase do nothing. A phase takes
// its time on the clock that goes on through sleep; setting the wall clock moves its dates along.
// Main thread only; what it is given must outlive it.
class FocusTimer {
public:
    FocusTimer(AppSettings& settings, Store& store, EventLoop& loop, ReminderScheduler& scheduler,
               SystemSounds& sounds, std::function<Presence()> presence);

    // Begins a session with the plan of the settings; one that runs is stopped first.
    void start();
    void pause();
    void resume();
    // Ends the break, or the focus phase before its time; begins the next round when ready.
    void skip();
    void startNextFocus();
    void extendFocus();  // by five minutes, from a break; they count into the round's block
    void extendBreak();  // by five minutes, when ready
    void stop();

    void perform(FocusAlertAction action);  // what an alert's answer asks for
    void presenceDidChange(Presence presence);
    void appWillTerminate();
    // Blocks that an earlier run left without an end end at the latest moment they can have had.
    void closeBlocksLeftRunning();

    const Observable<std::optional<FocusSession>>& session() const { return session_; }
    // The time for the interface: set at each whole minute before the phase's end, and at changes.
    const Observable<Instant>& now() const { return now_; }

    FocusAlertPresenting* presenter = nullptr;  // not owned
    std::function<void()> onUpdate = [] {};

private:
    // The wall clock, but for a step of which nobody has told yet.
    Instant time() const;
    void wallClockChanged();

    void become(std::optional<FocusSession> next);
    void withdrawAlerts();
    void tick();
    void announce(const FocusSession& session);
    bool stillApplies(const FocusAlert& alert) const;
    void update();
    void scheduleTick();

    void beginBlock(const FocusSession& session);
    void countIntoBlock(const FocusSession& session, Instant at);
    void endBlock(const FocusSession& session, Instant at);
    void saveBlock();

    AppSettings& settings_;
    Store& store_;
    EventLoop& loop_;
    ReminderScheduler& scheduler_;
    SystemSounds& sounds_;
    std::function<Presence()> presence_;

    Duration wallAhead_;  // of the clock that never jumps
    Observable<std::optional<FocusSession>> session_;
    Observable<Instant> now_;
    std::optional<FocusAlert> pendingAlert_;  // held back until the user is there
    std::optional<FocusBlock> block_;         // of this round; stays until the next for extensions
    int blockSecondsBefore_ = 0;              // counted into `block_` before its extension
    bool isBlockSaved_ = true;
    std::vector<FocusBlock> unsaved_;  // earlier blocks that wait for a save that succeeds
    Timer ticker_{loop_};
    Subscription clockChanged_;  // last member: goes first
};

}  // namespace tendel

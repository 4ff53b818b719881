#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/AlertHold.h"
#include "app/TendelApp.h"
#include "ui/alert/AlertAnswers.h"

namespace tendel {

// Why a request was not carried out, and what would be right.
struct RemoteRefusal {
    enum class Kind { invalidArgument, notPaused, noAlert, noFocusSession, notPossibleNow };

    Kind kind = Kind::notPossibleNow;
    std::string message{};
};

// What other programs can see of Tendel. Texts that name a case are the case's name.
struct RemoteState {
    std::string nextTitle{};  // of the reminders that come next; empty when none does
    std::optional<Instant> nextTime{};
    std::string holdReason{};  // of an AlertHold; empty while alerts are shown
    std::optional<Instant> holdUntil{};
    std::size_t waiting = 0;   // reminders that are shown once nothing holds them
    std::string focusPhase{};  // of the session; empty without one
    bool isFocusPaused = false;
    int focusRound = 0;
    std::optional<Instant> focusEndsAt{};  // of the phase that runs
    double focusPausedRemaining = 0;       // seconds
    std::string alertTitle{};              // empty without an alert
    std::vector<std::string> alertAnswers{};
    std::optional<Instant> breakEndsAt{};  // of the alert's break that runs

    friend bool operator==(const RemoteState&, const RemoteState&) = default;
};

// Carries out what other programs ask for, and tells them what there is to see. A request that
// would have no effect is refused. Main thread only; what it is given must outlive it.
class RemoteControl {
public:
    using Refused = std::optional<RemoteRefusal>;

    RemoteControl(TendelApp& app, const Observable<std::optional<AlertHold>>& hold);

    Refused pauseFor(std::uint32_t minutes);
    Refused pauseUntil(std::int64_t secondsSince1970);
    Refused pauseUntilTomorrow();
    Refused resume();

    // Begins a session, or the round that one waits for.
    Refused startFocus();
    Refused pauseFocus();
    Refused resumeFocus();
    Refused skipFocus();
    Refused extendFocus();
    Refused extendBreak();
    Refused stopFocus();

    // Answers the alert that is on the screen, or whose break runs.
    Refused answer(std::string_view answer);

    void openWindow();
    Refused openSection(std::string_view section);
    // An action of the desktop entry, by its identifier.
    Refused perform(std::string_view action);

    // After a request, so that who asked finds its effect.
    void refresh();
    const Observable<RemoteState>& state() const { return state_; }

    Signal<std::string, std::vector<std::string>> alertShown;  // title, answers
    // Title, and the outcome that was recorded; empty when none was.
    Signal<std::string, std::string> alertClosed;

private:
    struct Shown {
        AlertQueue::Entry entry{};
        std::string title{};
    };

    Refused pause(Instant until);
    Refused refuseWithoutSession() const;
    // What the alert shows; nothing while none can be answered.
    const NotchAlertContent* alert() const;
    std::vector<AlertAnswer> possibleAnswers(const NotchAlertContent& content) const;
    RemoteState find() const;
    void follow(const RemoteState& found);
    std::string outcomeOf(const AlertQueue::Entry& entry) const;

    TendelApp& app_;
    const Observable<std::optional<AlertHold>>& hold_;
    Observable<RemoteState> state_;
    std::optional<Shown> shown_;
    Timer soon_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

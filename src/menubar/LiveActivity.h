#pragma once

#include <optional>
#include <string>
#include <vector>

#include "base/Calendar.h"
#include "focus/FocusSession.h"

namespace tendel {

class ReminderScheduler;
struct NotchAlertContent;

// Something that runs right now, as the live pill shows it.
struct LiveActivity {
    // Who runs it; the first one goes before the others.
    enum class Source { microBreak, focus, pause };
    enum class Control {
        pause,
        resume,
        skip,
        stop,
        startFocus,
        extendBreak,
        finishBreak,
        stopBreak,
        resumeReminders,
        mute,
        unmute,
    };
    // What the colour of the ring and the buttons stands for.
    enum class Tint { work, private_, focus, rest, quiet };
    // How much room the time has: the pill's, or the card's.
    enum class Detail { compact, full };

    std::string systemImage{};
    Tint tint = Tint::quiet;
    std::string title{};
    std::optional<std::string> subtitle{};
    std::optional<Instant> endsAt{};          // when it ends, if it counts down
    std::optional<double> pausedRemaining{};  // seconds; wins over `endsAt`
    double duration = 0;                      // seconds, the full length, for the ring
    std::optional<std::string> status{};      // stands for the time where nothing counts down
    std::vector<Control> controls{};          // in the order of the buttons
    std::string skipTitle = "Skip";
    bool opensOnClick = false;

    // A pause of reminders. It can only be ended.
    static LiveActivity reminderPause(Instant startedAt, Instant until, const Calendar& calendar);
    // A focus session: what the timer can do in the phase, and the switch of the sounds where they
    // play or are muted. A click opens the app's own view of it.
    static LiveActivity focus(const FocusSession& session, std::optional<Control> sounds,
                              const Calendar& calendar);
    // A break that an alert handed over while it runs: taken early, or not taken.
    static LiveActivity timedBreak(const NotchAlertContent& content);
    // The break that was shown is over: a check mark with that message.
    static LiveActivity finishedBreak(const LiveActivity& running, std::string message);

    // Seconds left, never negative; nothing where nothing counts down.
    std::optional<double> remaining(Instant now) const;
    // "12m" rounded up, "0:59" in the last minute; the status where nothing counts down.
    std::string compactText(Instant now) const;
    // "12:05", and "1h 5m" from an hour on.
    std::string fullText(Instant now) const;
    std::string timeText(Instant now, Detail detail) const {
        return detail == Detail::compact ? compactText(now) : fullText(now);
    }
    // What is left of the whole, from 1 down to 0.
    double progressLeft(Instant now) const;
    // How long until the time text or the ring look different; nothing when they stand still.
    std::optional<Duration> untilNextChange(Instant now, Detail detail) const;

    friend bool operator==(const LiveActivity&, const LiveActivity&) = default;
};

// The text of a control's button.
std::string controlTitle(const LiveActivity& activity, LiveActivity::Control control);

// The scheduler's pause; nothing while reminders run.
std::optional<LiveActivity> pauseLiveActivity(const ReminderScheduler& scheduler,
                                              const Calendar& calendar);

}  // namespace tendel

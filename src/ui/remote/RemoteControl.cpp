#include "ui/remote/RemoteControl.h"

#include <algorithm>
#include <array>
#include <utility>

#include "reminders/PauseOption.h"

namespace tendel {

namespace {

using Kind = RemoteRefusal::Kind;
using Refused = RemoteControl::Refused;

constexpr std::uint32_t longestPauseMinutes = 365 * 24 * 60;

template <class T>
using Names = std::pair<std::string_view, T>;

constexpr std::array sections{
    Names<SidebarItem>{"privateReminders", SidebarItem::privateReminders},
    Names<SidebarItem>{"workReminders", SidebarItem::workReminders},
    Names<SidebarItem>{"focus", SidebarItem::focus},
    Names<SidebarItem>{"stats", SidebarItem::stats},
};

// The identifiers of data/app.tendel.Tendel.desktop.
constexpr std::array actions{
    Names<Refused (*)(RemoteControl&)>{"pause-for-1-hour",
                                       [](RemoteControl& remote) { return remote.pauseFor(60); }},
    Names<Refused (*)(RemoteControl&)>{"resume",
                                       [](RemoteControl& remote) { return remote.resume(); }},
    Names<Refused (*)(RemoteControl&)>{"start-focus",
                                       [](RemoteControl& remote) { return remote.startFocus(); }},
    Names<Refused (*)(RemoteControl&)>{
        "open-stats", [](RemoteControl& remote) { return remote.openSection("stats"); }},
};

std::string_view name(AlertAnswer answer) {
    switch (answer) {
        case AlertAnswer::start:
            return "start";
        case AlertAnswer::done:
            return "done";
        case AlertAnswer::snooze:
            return "snooze";
        case AlertAnswer::skip:
            return "skip";
        case AlertAnswer::skipAll:
            return "skipAll";
        case AlertAnswer::hadBreak:
            return "hadBreak";
        case AlertAnswer::hideInPill:
            return "hideInPill";
        case AlertAnswer::extendFocus:
            return "extendFocus";
        case AlertAnswer::skipBreak:
            return "skipBreak";
        case AlertAnswer::startFocus:
            return "startFocus";
        case AlertAnswer::extendBreak:
            return "extendBreak";
        case AlertAnswer::more:
        case AlertAnswer::back:
            break;
    }
    return {};
}

std::string_view name(AlertHold::Reason reason) {
    switch (reason) {
        case AlertHold::Reason::pause:
            return "pause";
        case AlertHold::Reason::away:
            return "away";
        case AlertHold::Reason::call:
            return "call";
        case AlertHold::Reason::presentation:
            return "presentation";
        case AlertHold::Reason::focus:
            return "focus";
    }
    return {};
}

std::string_view name(FocusSession::Phase phase) {
    switch (phase) {
        case FocusSession::Phase::focus:
            return "focus";
        case FocusSession::Phase::shortBreak:
            return "shortBreak";
        case FocusSession::Phase::longBreak:
            return "longBreak";
        case FocusSession::Phase::ready:
            return "ready";
    }
    return {};
}

Refused refuse(Kind kind, std::string message) {
    return RemoteRefusal{kind, std::move(message)};
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

template <class Range, class Name>
std::string listed(const Range& range, const Name& nameOf) {
    std::string all;
    for (const auto& one : range)
        all += (all.empty() ? "" : ", ") + std::string(nameOf(one));
    return all;
}

template <class T, std::size_t count>
const T* find(const std::array<Names<T>, count>& names, std::string_view name) {
    const auto found = std::ranges::find(names, name, &Names<T>::first);
    return found != names.end() ? &found->second : nullptr;
}

template <class T, std::size_t count>
Refused refuseUnknown(std::string_view what, std::string_view given,
                      const std::array<Names<T>, count>& names) {
    const auto nameOf = [](const auto& named) { return named.first; };
    return refuse(Kind::invalidArgument, quoted(given) + " is no " + std::string(what) +
                                             "; there are: " + listed(names, nameOf) + ".");
}

}  // namespace

RemoteControl::RemoteControl(TendelApp& app, const Observable<std::optional<AlertHold>>& hold)
    : app_(app), hold_(hold), soon_(app.platform.loop) {
    // One moment changes several of them, and between the first and the last they do not agree.
    const auto lookAgain = [this] {
        if (!soon_.isRunning()) soon_.start({}, [this] { refresh(); });
    };
    subscriptions_.push_back(app.scheduler.upcoming().observe(lookAgain));
    subscriptions_.push_back(hold.observe(lookAgain));
    subscriptions_.push_back(app.focus.session().observe(lookAgain));
    subscriptions_.push_back(
        app.alerts.model().changed.connect([lookAgain](const auto&) { lookAgain(); }));
    // A break that runs in the pill ends there.
    subscriptions_.push_back(app.live.changed.connect(lookAgain));
    refresh();
}

Refused RemoteControl::pauseFor(std::uint32_t minutes) {
    if (minutes < 1 || minutes > longestPauseMinutes)
        return refuse(Kind::invalidArgument, "A pause lasts from 1 minute to " +
                                                 std::to_string(longestPauseMinutes) +
                                                 " (a year), not " + std::to_string(minutes) + ".");
    return pause(app_.platform.loop.now() + std::chrono::minutes(minutes));
}

Refused RemoteControl::pauseUntil(std::int64_t secondsSince1970) {
    // In seconds, since a number that makes no sense may have no microseconds.
    const auto now = std::chrono::floor<std::chrono::seconds>(app_.platform.loop.now());
    const auto first = now.time_since_epoch().count();
    const auto last = first + std::int64_t{longestPauseMinutes} * 60;
    if (secondsSince1970 <= first || secondsSince1970 > last)
        return refuse(Kind::invalidArgument,
                      "A pause ends after now and within a year, in seconds since 1970: between " +
                          std::to_string(first + 1) + " and " + std::to_string(last) + ", not " +
                          std::to_string(secondsSince1970) + ".");
    return pause(Instant(std::chrono::seconds(secondsSince1970)));
}

Refused RemoteControl::pauseUntilTomorrow() {
    return pause(
        pauseEnd(PauseOption::untilTomorrow, app_.platform.loop.now(), app_.platform.calendar));
}

Refused RemoteControl::pause(Instant until) {
    app_.scheduler.pause(until);
    return std::nullopt;
}

Refused RemoteControl::resume() {
    if (!*app_.scheduler.pausedUntil())
        return refuse(Kind::notPaused, "Reminders are not paused; PauseFor pauses them.");
    app_.scheduler.resume();
    return std::nullopt;
}

Refused RemoteControl::refuseWithoutSession() const {
    if (*app_.focus.session()) return std::nullopt;
    return refuse(Kind::noFocusSession, "No focus session runs; StartFocus begins one.");
}

Refused RemoteControl::startFocus() {
    const auto& session = *app_.focus.session();
    if (session && session->phase != FocusSession::Phase::ready)
        return refuse(
            Kind::notPossibleNow,
            "A focus session runs already; SkipFocus ends its phase, StopFocus all of it.");
    if (session)
        app_.focus.startNextFocus();
    else
        app_.focus.start();
    return std::nullopt;
}

Refused RemoteControl::pauseFocus() {
    if (auto refused = refuseWithoutSession()) return refused;
    const auto& session = **app_.focus.session();
    if (session.isPaused())
        return refuse(Kind::notPossibleNow, "The session is paused already; ResumeFocus goes on.");
    if (!session.endsAt)
        return refuse(Kind::notPossibleNow,
                      "The session waits for its next round; StartFocus begins it.");
    app_.focus.pause();
    return std::nullopt;
}

Refused RemoteControl::resumeFocus() {
    if (auto refused = refuseWithoutSession()) return refused;
    if (!(*app_.focus.session())->isPaused())
        return refuse(Kind::notPossibleNow, "The session is not paused; PauseFocus pauses it.");
    app_.focus.resume();
    return std::nullopt;
}

Refused RemoteControl::skipFocus() {
    if (auto refused = refuseWithoutSession()) return refused;
    app_.focus.skip();
    return std::nullopt;
}

Refused RemoteControl::extendFocus() {
    if (auto refused = refuseWithoutSession()) return refused;
    if (!(*app_.focus.session())->isBreak())
        return refuse(Kind::notPossibleNow, "Focus is extended during the break that follows it.");
    app_.focus.extendFocus();
    return std::nullopt;
}

Refused RemoteControl::extendBreak() {
    if (auto refused = refuseWithoutSession()) return refused;
    if ((*app_.focus.session())->phase != FocusSession::Phase::ready)
        return refuse(Kind::notPossibleNow,
                      "A break is extended once it is over, before the next round.");
    app_.focus.extendBreak();
    return std::nullopt;
}

Refused RemoteControl::stopFocus() {
    if (auto refused = refuseWithoutSession()) return refused;
    app_.focus.stop();
    return std::nullopt;
}

const NotchAlertContent* RemoteControl::alert() const {
    const auto& current = app_.alerts.queue().current;
    const auto& content = app_.alerts.model().content();
    // While a check mark shows, the next alert is current but not on the screen yet.
    return current && content && content->id == current->id ? &*content : nullptr;
}

std::vector<AlertAnswer> RemoteControl::possibleAnswers(const NotchAlertContent& content) const {
    auto answers = answersTo(content);
    // In the pill it is already, or on its way there.
    if (!app_.alerts.model().showsContent()) std::erase(answers, AlertAnswer::hideInPill);
    return answers;
}

Refused RemoteControl::answer(std::string_view given) {
    const NotchAlertContent* shown = alert();
    if (!shown) return refuse(Kind::noAlert, "No alert is on the screen.");
    const auto answers = possibleAnswers(*shown);
    const auto asked =
        std::ranges::find_if(answers, [&](AlertAnswer answer) { return name(answer) == given; });
    if (asked == answers.end())
        return refuse(Kind::invalidArgument,
                      quoted(given) + " is no answer to this alert, which takes: " +
                          listed(answers, [](AlertAnswer answer) { return name(answer); }) + ".");
    const auto before = std::pair(app_.alerts.queue().current, app_.alerts.model().showsContent());
    give(*asked, app_.alerts.actions());
    const bool hasEffect =
        before != std::pair(app_.alerts.queue().current, app_.alerts.model().showsContent());
    // The controller takes no answer in the moment in which one alert takes another's place.
    if (!hasEffect)
        return refuse(Kind::notPossibleNow,
                      "The alert has only just come up; ask again in half a second.");
    return std::nullopt;
}

void RemoteControl::openWindow() {
    app_.navigation.requestWindow();
}

Refused RemoteControl::openSection(std::string_view section) {
    const SidebarItem* item = tendel::find(sections, section);
    if (!item) return refuseUnknown("section", section, sections);
    app_.navigation.request(*item);
    return std::nullopt;
}

Refused RemoteControl::perform(std::string_view action) {
    const auto* request = tendel::find(actions, action);
    if (!request) return refuseUnknown("action", action, actions);
    return (*request)(*this);
}

RemoteState RemoteControl::find() const {
    RemoteState found;
    if (const auto& upcoming = *app_.scheduler.upcoming()) {
        found.nextTitle = upcoming->title();
        found.nextTime = upcoming->fireDate;
    }
    if (const auto& session = *app_.focus.session()) {
        found.focusPhase = name(session->phase);
        found.isFocusPaused = session->isPaused();
        found.focusRound = session->round;
        found.focusEndsAt = session->endsAt;
        found.focusPausedRemaining = session->pausedRemaining.value_or(0);
    }
    found.waiting = app_.scheduler.kept()->size();
    if (const auto& hold = *hold_) {
        found.holdReason = name(hold->reason);
        found.holdUntil = hold->pausedUntil;
        if (hold->reason == AlertHold::Reason::focus) found.holdUntil = found.focusEndsAt;
    }
    if (const NotchAlertContent* shown = alert()) {
        found.alertTitle = shown->title;
        for (const AlertAnswer answer : possibleAnswers(*shown))
            found.alertAnswers.emplace_back(name(answer));
        found.breakEndsAt = shown->breakEndsAt;
    }
    return found;
}

void RemoteControl::refresh() {
    soon_.stop();
    const RemoteState found = find();
    state_.set(found);
    follow(found);
}

// After the state, so that who hears of an alert finds it there.
void RemoteControl::follow(const RemoteState& found) {
    const bool isThere = alert();
    const auto& current = app_.alerts.queue().current;
    if (shown_ && (!isThere || shown_->entry.id != current->id)) {
        const Shown closed = *std::exchange(shown_, std::nullopt);
        alertClosed.emit(closed.title, outcomeOf(closed.entry));
    }
    if (isThere && !shown_) {
        shown_ = Shown{*current, found.alertTitle};
        alertShown.emit(found.alertTitle, found.alertAnswers);
    }
}

std::string RemoteControl::outcomeOf(const AlertQueue::Entry& entry) const {
    std::string outcome;
    const auto reminder = entry.reminderId();
    if (!reminder) return outcome;
    for (const auto& event : app_.store.eventsDue(entry.fireDate, entry.fireDate + Duration(1)))
        if (event.reminder == reminder) outcome = event.outcomeRaw;
    return outcome;
}

}  // namespace tendel

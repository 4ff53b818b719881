#include "alerts/NotchAlertController.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace tendel {

namespace {

using std::chrono::milliseconds;
using Entry = AlertQueue::Entry;

constexpr Duration tick = milliseconds(250);
// How long a break that has just begun stays where the user started it.
constexpr Duration breakStaysOpen = milliseconds(1500);
// With no more than this left, moving it would only be a flicker.
constexpr Duration shortestMovedBreak = milliseconds(1000);
// When one alert takes another's place, its buttons lie where the pointer is: the second half of a
// double click, or a click meant for the first alert, must not answer it.
constexpr Duration swapSettles = milliseconds(350);

constexpr std::string_view niceWork = "Nice work!";
constexpr std::string_view breakCounted = "Got it · break counted";

NotchAlertContent::Style styleOf(const FocusAlert& alert) {
    return alert.kind == FocusAlert::Kind::focusEnded ? NotchAlertContent::Style::focusEnded
                                                      : NotchAlertContent::Style::breakEnded;
}

std::string_view symbolOf(const FocusAlert& alert) {
    return alert.kind == FocusAlert::Kind::focusEnded ? "cup.and.saucer" : "target";
}

bool offersBreak(const Entry& entry) {
    return entry.durationSeconds && *entry.durationSeconds > 0;
}

}  // namespace

std::optional<ScreenInfo> activeScreen(const Screens& screens) {
    const auto all = screens.all();
    if (all.empty()) return std::nullopt;
    const auto pointer = screens.pointer();
    if (!pointer) return all.front();
    const auto under = std::ranges::find_if(all, [&](const ScreenInfo& screen) {
        return screen.frame.contains(pointer->first, pointer->second);
    });
    return under != all.end() ? *under : all.front();
}

NotchAlertController::NotchAlertController(AppSettings& settings, Store& store, EventLoop& loop,
                                           const Calendar& calendar, ReminderScheduler& scheduler,
                                           Screens& screens, SystemSounds& sounds)
    : settings_(settings),
      store_(store),
      loop_(loop),
      calendar_(calendar),
      scheduler_(scheduler),
      screens_(screens),
      sounds_(sounds) {
    actions_.done = [this] { answer(Outcome::done, niceWork); };
    actions_.start = [this] { startBreak(); };
    actions_.snooze = [this] { answer(Outcome::snoozed); };
    actions_.skip = [this] { answer(Outcome::skipped); };
    actions_.skipAll = [this] { skipAll(); };
    actions_.hadBreak = [this] { answer(Outcome::breakTaken, breakCounted); };
    actions_.hideInPill = [this] {
        if (queue_.isBreakRunning() && canMoveBreak()) moveBreakIntoPill();
    };
    actions_.focus = [this](FocusAlertAction action) { answerFocus(action); };

    model_.onHidden = [this] {
        // A break that goes on in the pill keeps its place in the queue.
        if (!queue_.current) showNext();
        if (model_.isHidden() && panel) panel->hide();
    };
    subscriptions_.push_back(store_.saved.connect([this] {
        if (!isRecording_) refreshFromStore();
    }));
    subscriptions_.push_back(screens_.changed.connect([this] { screensChanged(); }));
    subscriptions_.push_back(loop_.wallClockChanged.connect([this] { wallClockChanged(); }));
}

void NotchAlertController::present(const Upcoming& upcoming) {
    std::vector<Entry> entries;
    for (const Upcoming::Item& item : upcoming.items)
        entries.push_back(Entry::of(item, upcoming.fireDate, loop_.now()));
    enqueue(std::move(entries));
}

void NotchAlertController::presentFocusAlert(const FocusAlert& alert) {
    // One that speaks of a phase that is over gives way: its answers no longer apply.
    const bool isOutdated = queue_.current && queue_.current->isFocus() &&
                            queue_.current->source != Entry::Source(alert);
    if (isOutdated) queue_.current.reset();
    enqueue({Entry::of(alert, loop_.now())});
    if (isOutdated) showNext();
}

void NotchAlertController::presentSample(const Upcoming::Item& sample) {
    enqueue({Entry::sample(sample, loop_.now())});
}

void NotchAlertController::enqueue(std::vector<Entry> entries) {
    record(queue_.enqueue(std::move(entries)), Outcome::expired);
    if (!queue_.current && model_.isHidden())
        showNext();
    else
        waitingChanged();
}

void NotchAlertController::waitingChanged() {
    model_.setQueuedCount(static_cast<int>(queue_.waiting.size()));
    if (queue_.current && !queue_.isBreakRunning() && !autoHideLeft_) scheduleTick();
}

void NotchAlertController::dismissAll() {
    queue_.waiting.clear();
    takeDown();
}

void NotchAlertController::userGotBusy(Presence busy) {
    if (!isBusy(busy)) return;
    const auto reason = busy == Presence::busyCall ? KeptReason::call : KeptReason::presentation;
    handBack([&](const Entry& entry, const Upcoming::Item& item) {
        scheduler_.keep({&item, 1}, reason, entry.fireDate);
    });
}

void NotchAlertController::userWentAway() {
    handBack([&](const Entry& entry, const Upcoming::Item& item) {
        scheduler_.keepAfterAway({&item, 1}, entry.fireDate);
    });
}

void NotchAlertController::handBack(
    const std::function<void(const Entry&, const Upcoming::Item&)>& keep) {
    if (queue_.isEmpty()) return;
    std::vector<Entry> entries;
    if (queue_.isBreakRunning()) {
        // What the user has started goes on.
        entries = queue_.removeWaiting();
        waitingChanged();
    } else {
        entries = queue_.removeAll();
        takeDown();
    }
    for (const Entry& entry : entries)
        if (const auto item = entry.item()) keep(entry, *item);
}

void NotchAlertController::removeFocusAlerts() {
    if (queue_.removeFocusAlerts()) withdrawCurrent();
    waitingChanged();
}

void NotchAlertController::takeDown() {
    stopCurrent();
    queue_.current.reset();
    model_.dismiss();
}

void NotchAlertController::withdrawCurrent() {
    stopCurrent();
    queue_.current.reset();
    showNext();
}

void NotchAlertController::stopCurrent(const std::optional<std::string>& message) {
    autoHide_.stop();
    breakTimer_.stop();
    if (std::exchange(isBreakInPill_, false) && pill) pill->endBreak(message);
}

bool NotchAlertController::isAnswerable() const {
    // While the check mark or the closing motion shows, what is on the screen is not the current
    // alert, or none is current.
    return queue_.current && model_.content() && model_.content()->id == queue_.current->id &&
           loop_.monotonicNow() >= answerableFrom_;
}

void NotchAlertController::answer(Outcome outcome, std::string_view message) {
    if (isAnswerable()) resolve(outcome, message);
}

void NotchAlertController::answerFocus(FocusAlertAction action) {
    if (!isAnswerable() || !queue_.current->isFocus()) return;
    const AlertId answered = queue_.current->id;
    // Most of the timer's operations withdraw its alerts; the one behind must not be answered.
    onFocusAction(action);
    if (queue_.current && queue_.current->id == answered) resolve(Outcome::skipped, {});
}

void NotchAlertController::skipAll() {
    if (!isAnswerable()) return;
    const auto skipped = queue_.removeAll();
    stopCurrent();
    record(skipped, Outcome::skipped);
    showNext();
}

void NotchAlertController::resolve(Outcome outcome, std::string_view message) {
    const Entry answered = *queue_.current;
    const bool celebrates =
        (outcome == Outcome::done || outcome == Outcome::breakTaken) && model_.isInteractive();
    const auto said = message.empty() ? std::nullopt : std::optional(std::string(message));
    stopCurrent(said);
    // Gone before it is recorded: what the save sets off finds it answered.
    queue_.current.reset();
    record({&answered, 1}, outcome);
    if (const auto reminder = answered.reminderId(); reminder && outcome == Outcome::snoozed)
        scheduler_.snooze(*reminder, std::chrono::minutes(model_.content()->snoozeMinutes));
    queue_.restartWaiting(loop_.now());
    showNext(celebrates ? said : std::nullopt);
}

void NotchAlertController::record(std::span<const Entry> entries, Outcome outcome) {
    std::vector<ReminderEvent> events;
    for (const Entry& entry : entries) {
        const auto id = entry.reminderId();
        const Reminder* reminder = id ? store_.find(*id) : nullptr;
        if (reminder) events.emplace_back(*reminder, entry.fireDate, outcome, loop_.now());
    }
    if (events.empty()) return;
    const bool wasRecording = std::exchange(isRecording_, true);
    // A save that fails keeps the events and tries again later.
    static_cast<void>(store_.record(events));
    isRecording_ = wasRecording;
}

void NotchAlertController::expireStale() {
    record(queue_.removeStale(loop_.now()), Outcome::expired);
}

void NotchAlertController::showNext(const std::optional<std::string>& celebration) {
    expireStale();
    // Saving may have made the scheduler look; what it found due is shown already then.
    if (queue_.current) return;
    queue_.takeNext();
    if (celebration) {
        model_.complete(queue_.current ? std::optional(contentOf(*queue_.current)) : std::nullopt,
                        *celebration);
    } else if (queue_.current) {
        const bool swaps = model_.isInteractive();
        answerableFrom_ = loop_.monotonicNow() + (swaps ? swapSettles : Duration::zero());
        place();
        model_.present(contentOf(*queue_.current));
    } else {
        model_.dismiss();
    }
    if (queue_.current) startAutoHide();
}

void NotchAlertController::place() {
    screen_ = activeScreen(screens_);
    if (!screen_) {
        if (panel) panel->hide();
        return;
    }
    geometry_ = NotchAlertGeometry::of(*screen_, pill ? pill->restingWidth(*screen_) : std::nullopt,
                                       *settings_.alertStyle);
    model_.hasNotch = geometry_.notchSize.has_value();
    model_.style = geometry_.style;
    model_.restingWidth = geometry_.restingWidth;
    if (panel) panel->show(geometry_.panelFrame(screen_->frame), geometry_);
}

void NotchAlertController::liveDidChange() {
    if (model_.isHidden() || !screen_) return;
    geometry_.restingWidth = pill ? pill->restingWidth(*screen_) : std::nullopt;
    model_.restingWidth = geometry_.restingWidth;
    if (panel) panel->show(geometry_.panelFrame(screen_->frame), geometry_);
}

NotchAlertContent NotchAlertController::contentOf(const Entry& entry) const {
    NotchAlertContent content{.id = entry.id,
                              .title = entry.title,
                              .detail = entry.details,
                              .systemImage = entry.systemImage,
                              .animation = entry.animation,
                              .queuedCount = static_cast<int>(queue_.waiting.size()),
                              .snoozeMinutes = std::max(*settings_.snoozeMinutes, 1),
                              .breakEndsAt = entry.breakEndsAt,
                              .notice = entry.notice(calendar_)};
    if (offersBreak(entry)) content.durationSeconds = entry.durationSeconds;
    content.canHideInPill = entry.breakEndsAt && canMoveBreak();
    // Who may count stepping away as the break may also say that there was one unseen.
    content.offersHadBreak = entry.skipsWhenAway && !entry.breakEndsAt;
    if (const auto id = entry.reminderId()) {
        if (const Reminder* reminder = store_.find(*id)) content.kind = reminder->kind();
    } else if (const auto* alert = std::get_if<FocusAlert>(&entry.source)) {
        content.title = alert->title();
        content.systemImage = symbolOf(*alert);
        content.style = styleOf(*alert);
    }
    return content;
}

void NotchAlertController::refreshContent() {
    if (queue_.current) model_.refresh(contentOf(*queue_.current));
}

void NotchAlertController::startAutoHide() {
    autoHideLeft_ = autoHideTime(*settings_.alertAutoHide);
    scheduleTick();
}

void NotchAlertController::scheduleTick() {
    if (autoHideLeft_) {
        autoHide_.start(tick, [this] { tickAutoHide(); });
    } else if (const auto stale = queue_.nextStale()) {
        // Nothing counts down; only what waits behind can become too old.
        autoHide_.start(*stale - loop_.now(), [this] { tickAutoHide(); });
    } else {
        autoHide_.stop();
    }
}

void NotchAlertController::tickAutoHide() {
    const AlertId shown = queue_.current->id;
    // Nobody can see it without a screen.
    if (autoHideLeft_ && screen_ && model_.isInteractive() && !model_.isHovered())
        *autoHideLeft_ -= tick;
    expireStale();
    if (!queue_.current || queue_.current->id != shown) return;
    waitingChanged();
    if (autoHideLeft_ && *autoHideLeft_ <= Duration::zero())
        resolve(Outcome::expired, {});
    else
        scheduleTick();
}

void NotchAlertController::startBreak() {
    if (!isAnswerable() || queue_.isBreakRunning() || !offersBreak(*queue_.current)) return;
    const Duration length = std::chrono::seconds(*queue_.current->durationSeconds);
    autoHide_.stop();
    breakEnd_ = loop_.monotonicNow() + length;
    queue_.current->breakEndsAt = loop_.now() + length;
    breakTimer_.start(std::min(breakStaysOpen, length), [this] { watchBreak(); });
    model_.present(contentOf(*queue_.current));
}

void NotchAlertController::watchBreak() {
    const Duration left = breakEnd_ - loop_.monotonicNow();
    if (left <= Duration::zero()) {
        endBreak();
    } else if (model_.isHovered()) {
        breakTimer_.start(std::min(tick, left), [this] { watchBreak(); });
    } else if (left > shortestMovedBreak && canMoveBreak()) {
        moveBreakIntoPill();
    } else {
        breakTimer_.start(left, [this] { endBreak(); });
    }
}

bool NotchAlertController::canMoveBreak() const {
    return pill && !isBreakInPill_ && screen_ && pill->canShowBreak(*screen_);
}

void NotchAlertController::moveBreakIntoPill() {
    isBreakInPill_ = true;
    breakTimer_.startAt(breakEnd_, [this] { endBreak(); });
    pill->showBreak(contentOf(*queue_.current));
    model_.dismiss();
}

void NotchAlertController::endBreak() {
    if (*settings_.playsBreakEndSound) sounds_.play("Glass");
    resolve(Outcome::done, niceWork);
}

void NotchAlertController::refreshFromStore() {
    std::unordered_set<ReminderId> gone;
    const auto reread = [&](const Entry& entry) {
        const auto id = entry.reminderId();
        if (!id) return;
        const Reminder* reminder = store_.find(*id);
        // Who switches a reminder off does not want its alert either; a break that they started
        // goes on.
        if (!reminder || (!reminder->isOn && !entry.breakEndsAt))
            gone.insert(*id);
        else
            queue_.update(*id, Upcoming::Item::of(*reminder));
    };
    if (queue_.current) reread(*queue_.current);
    // A copy, because `update` writes to the entries.
    for (const Entry& entry : std::vector(queue_.waiting))
        reread(entry);

    const bool isCurrentGone = queue_.remove(gone);
    queue_.restartWaiting(loop_.now());
    if (isCurrentGone) {
        withdrawCurrent();
    } else {
        waitingChanged();
        refreshContent();
    }
}

void NotchAlertController::screensChanged() {
    if (isBreakInPill_ && !pill->hasScreen()) {
        isBreakInPill_ = false;
        pill->endBreak(std::nullopt);
        place();
        model_.present(contentOf(*queue_.current));
        return;
    }
    if (model_.isHidden()) return;
    const auto all = screens_.all();
    const bool isStillThere = screen_ && std::ranges::find(all, *screen_) != all.end();
    if (!isStillThere) place();
}

void NotchAlertController::wallClockChanged() {
    // Nothing has waited longer because a clock was set.
    queue_.restartWaiting(loop_.now());
    if (queue_.isBreakRunning()) {
        queue_.current->breakEndsAt = loop_.now() + (breakEnd_ - loop_.monotonicNow());
        if (isBreakInPill_) pill->showBreak(contentOf(*queue_.current));
    }
    waitingChanged();
    refreshContent();
}

}  // namespace tendel

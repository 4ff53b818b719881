#include "menubar/NotchLiveController.h"

#include <algorithm>

namespace tendel {

namespace {

using std::chrono::milliseconds;

constexpr Duration opensAfter = milliseconds(300);
constexpr Duration closesAfter = milliseconds(350);
// How long the check mark of a finished break stays.
constexpr Duration farewellTime = milliseconds(1500);
// Where other buttons take the place of those under the pointer, the second half of a double click,
// or a click meant for the first, must not press them.
constexpr Duration swapSettles = milliseconds(350);

}  // namespace

NotchLiveController::NotchLiveController(const AppSettings& settings, EventLoop& loop,
                                         Screens& screens,
                                         std::function<bool(const ScreenInfo&)> isFullScreen)
    : settings_(settings), loop_(loop), screens_(screens), isFullScreen_(std::move(isFullScreen)) {
    model_.onHidden = [this] { place(std::nullopt); };
    const auto lookAgain = [this] { refresh(); };
    subscriptions_.push_back(model_.changed.connect([this](const auto&) {
        setLiveArea();
        updateHover();
    }));
    subscriptions_.push_back(screens_.changed.connect(lookAgain));
    subscriptions_.push_back(settings_.showsFocusInNotch.observe(lookAgain));
    subscriptions_.push_back(settings_.showsPausesInNotch.observe(lookAgain));
    subscriptions_.push_back(settings_.hidesLivePillInFullScreen.observe(lookAgain));
}

void NotchLiveController::update(std::optional<LiveActivity> activity, Source source) {
    if (source == Source::microBreak) farewell_.stop();
    if (activity)
        activities_.insert_or_assign(source, std::move(*activity));
    else
        activities_.erase(source);
    refresh();
}

bool NotchLiveController::shows(Source source) const {
    switch (source) {
        case Source::microBreak:
            return true;
        case Source::focus:
            return *settings_.showsFocusInNotch;
        case Source::pause:
            return *settings_.showsPausesInNotch;
    }
    return false;
}

bool NotchLiveController::canShow(Source source, const ScreenInfo& screen) const {
    return shows(source) && notchScreen() == screen &&
           !(*settings_.hidesLivePillInFullScreen && isFullScreen_(screen));
}

bool NotchLiveController::canShow(Source source) const {
    const auto screen = notchScreen();
    return screen && canShow(source, *screen);
}

std::optional<ScreenInfo> NotchLiveController::notchScreen() const {
    // Of several the first, which is the main one where that has a notch: it must not follow the
    // pointer about.
    const auto all = screens_.all();
    const auto found = std::ranges::find_if(
        all, [](const ScreenInfo& screen) { return screen.notchSize().has_value(); });
    return found != all.end() ? std::optional(*found) : std::nullopt;
}

std::optional<NotchLiveController::Source> NotchLiveController::chosen() const {
    // The map is in the order of the sources.
    for (const auto& [source, activity] : activities_)
        if (canShow(source)) return source;
    return std::nullopt;
}

void NotchLiveController::refresh() {
    const auto before = std::exchange(showing_, chosen());
    updateCover();
    if (showing_) {
        const LiveActivity& activity = activities_.at(*showing_);
        if (!model_.activity() || model_.activity()->controls != activity.controls)
            pressableFrom_ = loop_.monotonicNow() + swapSettles;
        place(notchScreen());
        model_.show(activity);
    } else {
        // Without the screen there is no place for what is left of the motion.
        if (!hasScreen()) place(std::nullopt);
        model_.hide();
    }
    if (showing_ != before) onShowingChange();
    changed.emit();
}

void NotchLiveController::place(const std::optional<ScreenInfo>& screen) {
    if (screen_ == screen) return;
    screen_ = screen;
    if (!screen_) {
        pointer_.reset();
        if (panel) panel->hide();
        return;
    }
    geometry_ = {.notchSize = *screen_->notchSize()};
    if (panel) panel->show(geometry_.panelFrame(screen_->frame), geometry_);
    setLiveArea();
}

void NotchLiveController::setLiveArea() {
    if (panel && screen_) panel->setLiveArea(geometry_.liveArea(model_.phase(), screen_->frame));
}

std::optional<double> NotchLiveController::restingWidth(const ScreenInfo& screen) const {
    return showing_ && screen_ == screen ? std::optional(geometry_.pillWidth()) : std::nullopt;
}

void NotchLiveController::alertDidChange(const NotchAlertController& alerts) {
    alertScreen_ = alerts.isUp() ? alerts.screen() : std::nullopt;
    updateCover();
}

void NotchLiveController::updateCover() {
    model_.setCovered(alertScreen_ && alertScreen_ == notchScreen());
}

void NotchLiveController::showBreak(const NotchAlertContent& content) {
    update(LiveActivity::timedBreak(content), Source::microBreak);
}

void NotchLiveController::endBreak(const std::optional<std::string>& completionMessage) {
    if (!completionMessage || showing_ != Source::microBreak)
        return update(std::nullopt, Source::microBreak);
    update(LiveActivity::finishedBreak(activities_.at(Source::microBreak), *completionMessage),
           Source::microBreak);
    farewell_.start(farewellTime, [this] { update(std::nullopt, Source::microBreak); });
}

void NotchLiveController::pointerMoved(std::optional<std::pair<double, double>> position) {
    pointer_ = position;
    updateHover();
}

void NotchLiveController::updateHover() {
    const NotchLivePhase phase = model_.phase();
    const bool isInside =
        pointer_ && screen_ &&
        geometry_.liveArea(phase, screen_->frame).contains(pointer_->first, pointer_->second);
    const bool opens = phase == NotchLivePhase::pill && isInside && !model_.isCovered();
    const bool closes = phase == NotchLivePhase::card && !isInside;
    if (!opens && !closes) return hoverTask_.stop();
    // A pointer that moves on inside does not begin anew.
    if (hoverTask_.isRunning()) return;
    hoverTask_.start(opens ? opensAfter : closesAfter, [this, opens] {
        if (opens)
            model_.openCard();
        else
            model_.closeCard();
    });
}

void NotchLiveController::clicked() {
    if (showing_ && activities_.at(*showing_).opensOnClick) onOpen(*showing_);
}

void NotchLiveController::press(LiveActivity::Control control) {
    if (!showing_ || loop_.monotonicNow() < pressableFrom_) return;
    const auto& offered = activities_.at(*showing_).controls;
    if (std::ranges::find(offered, control) != offered.end()) onControl(control);
}

}  // namespace tendel

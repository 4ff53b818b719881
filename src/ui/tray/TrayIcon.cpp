#include "ui/tray/TrayIcon.h"

#include <algorithm>
#include <utility>

#include "menubar/Countdown.h"
#include "ui/panel/PanelCommands.h"
#include "ui/theme/QtText.h"
#include "ui/tray/XEmbedIcon.h"

namespace tendel {

namespace {

// A click that was not meant costs no more than that.
constexpr PauseOption middleClickPause = PauseOption::minutes30;

// Desktops whose trays write the label beside the icon; the others leave it out.
bool desktopShowsLabels() {
    const auto names = qEnvironmentVariable("XDG_CURRENT_DESKTOP").split(u':');
    return names.contains(u"GNOME") || names.contains(u"Unity");
}

// As wide as the time gets until its hours change.
QString guideOf(QString time) {
    std::ranges::replace_if(
        time, [](QChar c) { return c.isDigit(); }, u'0');
    if (time == u"0m" || time.endsWith(u" 0m")) time.insert(time.size() - 1, u'0');
    return time;
}

}  // namespace

TrayIcon::TrayIcon(TendelApp& app, const Observable<std::optional<AlertHold>>& hold)
    : onActivate([&app](QPoint) { app.navigation.requestWindow(); }),
      app_(app),
      hold_(hold),
      soon_(app.platform.loop) {
    actions_ = {.onActivate = [this](QPoint at) { onActivate(at); },
                .onSecondaryActivate = [this] { togglePause(); },
                .onChoice = [&app](const PanelMenuEntry::Action& action) { perform(action, app); }};
    host_.onWatcher = [this] { item_.enroll(); };
    host_.onChange = [this](Tray tray) { serve(tray); };
    // One moment changes several of them; the trays hear of it once.
    const auto look = [this] {
        if (!soon_.isRunning()) soon_.start({}, [this] { refresh(); });
    };
    subscriptions_.push_back(app_.label.label().observe(look));
    subscriptions_.push_back(app_.scheduler.upcoming().observe(look));
    subscriptions_.push_back(app_.scheduler.pausedUntil().observe(look));
    subscriptions_.push_back(hold_.observe(look));
    // A new day makes a weekday of a time or the reverse, another zone another time.
    subscriptions_.push_back(app_.scheduler.now().observe(look));
    refresh();
    host_.watch();
}

TrayIcon::~TrayIcon() = default;

void TrayIcon::serve(Tray tray) {
    xEmbedIcon_ = tray == Tray::xEmbed ? std::make_unique<XEmbedIcon>(actions_) : nullptr;
    refresh();
}

void TrayIcon::refresh() {
    TrayContent content = this->content();
    if (xEmbedIcon_) xEmbedIcon_->show(content);
    static const bool showsLabels = desktopShowsLabels();
    if (showsLabels) content.image.time.clear();
    item_.show(content);
}

void TrayIcon::togglePause() {
    if (isPaused()) return app_.scheduler.resume();
    app_.scheduler.pause(
        pauseEnd(middleClickPause, app_.platform.loop.now(), app_.platform.calendar));
}

TrayContent TrayIcon::content() const {
    const MenuBarLabel& label = app_.label.label().get();
    const QString text = toQString(label.text);
    const QString time = this->time();
    return {.image = {.symbol = label.symbol, .time = time},
            .label = text,
            .labelGuide = text.endsWith(time) ? text.chopped(time.size()) + guideOf(time) : text,
            .status = status(),
            .menu = availableMenu(isPaused() ? ReminderState::paused : ReminderState::running)};
}

// The label's last word, which is all that an icon has room for.
QString TrayIcon::time() const {
    const MenuBarLabel& label = app_.label.label().get();
    const auto& upcoming = app_.scheduler.upcoming().get();
    if (!label.symbol.empty()) return toQString(label.text);
    if (label.text.empty() || !upcoming) return {};
    return toQString(countdownText(app_.scheduler.now().get(), upcoming->fireDate));
}

QString TrayIcon::status() const {
    const Calendar& calendar = app_.platform.calendar;
    const Instant now = app_.platform.loop.now();
    if (const auto& hold = hold_.get()) return toQString(hold->text(calendar, now));
    if (const auto& upcoming = app_.scheduler.upcoming().get())
        return QStringLiteral("Next: %1, %2")
            .arg(toQString(upcoming->title()),
                 toQString(whenOnClock(upcoming->fireDate, now, calendar)));
    return QStringLiteral("Tendel");
}

}  // namespace tendel

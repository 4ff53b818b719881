#include "ui/panel/FocusStrip.h"

#include <QPainter>

#include <cmath>
#include <utility>

#include "focus/FocusWords.h"
#include "ui/panel/PanelRow.h"
#include "ui/theme/Accessible.h"
#include "ui/theme/Button.h"
#include "ui/theme/Icons.h"
#include "ui/theme/QtText.h"
#include "ui/theme/TabularText.h"
#include "ui/window/FocusLook.h"

namespace tendel {

namespace {

using Control = LiveActivity::Control;

constexpr int runningHeight = 64;
constexpr int spaceBelow = 8;  // between the card and the rows
constexpr int edge = 14;
constexpr int ringSize = 40;
constexpr int ringWidth = 4;
constexpr int gap = 12;
constexpr std::size_t mostControls = 3;

const char* symbolOf(Control control) {
    switch (control) {
        case Control::pause:
            return "pause";
        case Control::skip:
            return "forward.end";
        case Control::stop:
            return "stop";
        case Control::extendBreak:
            return "plus";
        default:
            return "play";
    }
}

}  // namespace

FocusStrip::FocusStrip(TendelApp& app, QWidget* parent)
    : QWidget(parent),
      app_(app),
      start_(new PanelRow("target", tr("Start Focus"), this)),
      countdown_(app.platform.loop, *this, FocusCountdown::Precision::seconds, [this] {
          describe();
          update();
      }) {
    tellAs<FocusStrip, QAccessible::Grouping>();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    start_->setSymbolColor(Theme::Color::focusAccent);
    connect(start_, &QAbstractButton::clicked, this, [this] { app_.focus.start(); });
    for (std::size_t i = 0; i < mostControls; ++i) {
        auto* button = new IconButton("play", {}, this);
        connect(button, &QAbstractButton::clicked, this, [this, i] {
            if (activity_ && i < activity_->controls.size()) press(activity_->controls[i]);
        });
        buttons_.push_back(button);
    }
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
    const auto look = [this] { refresh(); };
    subscriptions_.push_back(app_.focus.session().observe(look));
    subscriptions_.push_back(app_.settings.focusPlan.observe(look));
    subscriptions_.push_back(app_.platform.loop.timeZoneChanged.connect(look));
    refresh();
}

QSize FocusStrip::sizeHint() const {
    return {160, activity_ ? runningHeight + spaceBelow : PanelRow::height};
}

void FocusStrip::press(Control control) {
    FocusTimer& timer = app_.focus;
    switch (control) {
        case Control::pause:
            return timer.pause();
        case Control::resume:
            return timer.resume();
        case Control::skip:
            return timer.skip();
        case Control::stop:
            return timer.stop();
        case Control::startFocus:
            return timer.startNextFocus();
        case Control::extendBreak:
            return timer.extendBreak();
        default:
            return;  // a focus session has no others
    }
}

void FocusStrip::refresh() {
    const auto& session = *app_.focus.session();
    const auto before = std::exchange(activity_, std::nullopt);
    if (session) activity_ = LiveActivity::focus(*session, std::nullopt, app_.platform.calendar);
    countdown_.setSession(session);
    start_->setNote(tr("%1 min").arg(app_.settings.focusPlan.get().focusMinutes));
    refreshButtons(before ? before->controls : std::vector<Control>());
    describe();
    updateGeometry();
    update();
}

void FocusStrip::refreshButtons(const std::vector<Control>& before) {
    const auto controls = activity_ ? activity_->controls : std::vector<Control>();
    const QWidget* focus = window()->focusWidget();
    const bool hadFocus = focus && isAncestorOf(focus);
    bool isOther = focus == start_;  // than what the keyboard was on
    start_->setVisible(!activity_);
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        if (i < controls.size())
            buttons_[i]->setMeaning(symbolOf(controls[i]),
                                    toQString(controlTitle(*activity_, controls[i])));
        buttons_[i]->setVisible(i < controls.size());
        if (focus == buttons_[i])
            isOther = i >= controls.size() || i >= before.size() || controls[i] != before[i];
    }
    // The keyboard does not leave with the button that was pressed, nor stays on one that now does
    // something else.
    if (hadFocus && isOther)
        (activity_ ? static_cast<QWidget*>(buttons_.front()) : start_)
            ->setFocus(Qt::OtherFocusReason);
}

// Its name changes by the minute: a screen reader would not come to rest otherwise.
void FocusStrip::describe() {
    QString name = tr("Focus timer");
    if (const auto& session = *app_.focus.session()) name = toQString(phaseText(*session));
    if (activity_ && countdown_.seconds() > 0)
        name += tr(", %1 min left").arg((countdown_.seconds() + 59) / 60);
    if (name != accessibleName()) setAccessibleName(name);
}

void FocusStrip::resizeEvent(QResizeEvent*) {
    start_->setGeometry(0, 0, width(), PanelRow::height);
    const QSize size = buttons_.front()->sizeHint();
    const int step = size.width() - focusMargin;
    int left = width() - edge + focusMargin + 4 - size.width() - 2 * step;
    for (IconButton* button : buttons_) {
        button->setGeometry(QRect(QPoint(left, (runningHeight - size.height()) / 2), size));
        left += step;
    }
}

void FocusStrip::paintEvent(QPaintEvent*) {
    const auto& session = *app_.focus.session();
    if (!activity_ || !session) return;
    const Theme& theme = Theme::instance();
    const Instant now = app_.platform.loop.now();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(Theme::Color::surface));
    const QRectF card(0, 0, width(), runningHeight);
    painter.drawRoundedRect(card, Theme::cardRadius, Theme::cardRadius);
    drawHairline(painter, card, Theme::cardRadius, theme.color(Theme::Color::hairline));

    constexpr double in = ringWidth / 2.0;
    const QRectF ring(edge + in, (runningHeight - ringSize) / 2.0 + in, ringSize - ringWidth,
                      ringSize - ringWidth);
    QColor track = theme.color(Theme::Color::text);
    track.setAlphaF(theme.isDark() ? 0.16F : 0.1F);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(track, ringWidth));
    painter.drawEllipse(ring);
    QColor color = theme.color(phaseColor(*session));
    const double left = activity_->progressLeft(now);
    constexpr double sixteenths = 360 * 16;  // Qt's unit of an arc
    painter.setPen(QPen(color, ringWidth, Qt::SolidLine, Qt::RoundCap));
    if (left > 0) painter.drawArc(ring, 90 * 16, static_cast<int>(std::lround(left * sixteenths)));
    QRectF symbol(0, 0, 16, 16);
    symbol.moveCenter(ring.center());
    icons::draw(painter, activity_->systemImage, symbol, color);

    const double from = edge + ringSize + gap;
    const QRectF words(from, card.center().y() - 20, buttons_.front()->x() - 4 - from, 20);
    const bool isReady = session->phase == FocusSession::Phase::ready;
    painter.setFont(theme.font(Theme::Type::title, true));
    painter.setPen(theme.color(Theme::Color::text));
    drawTabular(painter, words, Qt::AlignVCenter | Qt::AlignLeft,
                toQString(activity_->fullText(now)));
    painter.setFont(theme.font(Theme::Type::caption));
    painter.setPen(theme.color(Theme::Color::secondary));
    const QString phase =
        isReady ? tr("for %1").arg(toQString(nextText(*session))) : toQString(activity_->title);
    painter.drawText(
        words.translated(0, 20), Qt::AlignVCenter | Qt::AlignLeft,
        painter.fontMetrics().elidedText(phase, Qt::ElideRight, static_cast<int>(words.width())));
}

}  // namespace tendel

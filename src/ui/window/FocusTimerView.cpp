#include "ui/window/FocusTimerView.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include <algorithm>
#include <cmath>

#include "focus/FocusWords.h"
#include "ui/theme/Button.h"
#include "ui/theme/Label.h"
#include "ui/theme/QtText.h"
#include "ui/window/FocusLook.h"
#include "ui/window/RoundDots.h"

namespace tendel {

namespace {

using Phase = FocusSession::Phase;

constexpr int primaryWidth = 176;  // the same in every phase, so that it stays under the pointer

}  // namespace

FocusTimerView::FocusTimerView(Services services, QWidget* parent)
    : QWidget(parent),
      services_(std::move(services)),
      ring_(new FocusRing),
      dots_(new RoundDots),
      next_(new Label({Theme::Type::body, Theme::Color::secondary})),
      primary_(new Button(Button::Role::primary, {})),
      extend_(new Button(Button::Role::normal, {})),
      skip_(new Button(Button::Role::normal, {})),
      stop_(new Button(Button::Role::normal, tr("Stop"))),
      countdown_(services_.loop, *this, FocusCountdown::Precision::seconds,
                 [this] { ring_->setSeconds(countdown_.seconds()); }) {
    next_->setAlignment(Qt::AlignCenter);
    next_->setWordWrap(true);
    primary_->setMinimumWidth(primaryWidth + 2 * focusMargin);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(ring_, 0, Qt::AlignHCenter);
    column->addSpacing(16);
    column->addWidget(dots_);
    column->addSpacing(4);
    column->addWidget(next_);
    column->addSpacing(16 - focusMargin);
    column->addWidget(primary_, 0, Qt::AlignHCenter);
    column->addSpacing(8 - 2 * focusMargin);
    auto* further = new QWidget;
    further->setFixedHeight(stop_->sizeHint().height());  // kept while there is nothing to stop
    auto* row = new QHBoxLayout(further);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8 - 2 * focusMargin);
    row->addStretch();
    for (Button* button : {extend_, skip_, stop_})
        row->addWidget(button);
    row->addStretch();
    column->addWidget(further);

    FocusTimer& timer = services_.timer;
    connect(primary_, &QAbstractButton::clicked, this, &FocusTimerView::goOn);
    connect(skip_, &QAbstractButton::clicked, this, [&timer] { timer.skip(); });
    connect(stop_, &QAbstractButton::clicked, this, [&timer] { timer.stop(); });
    connect(extend_, &QAbstractButton::clicked, this, [&timer] {
        if (const auto& session = *timer.session(); session && session->isBreak())
            timer.extendFocus();
        else
            timer.extendBreak();
    });
    subscriptions_.push_back(
        timer.session().observe([this] { refresh(FocusRing::Change::fading); }));
    const auto look = [this] { refresh(FocusRing::Change::atOnce); };
    subscriptions_.push_back(services_.settings.focusPlan.observe(look));
    subscriptions_.push_back(services_.loop.timeZoneChanged.connect(look));
    refresh(FocusRing::Change::atOnce);
}

QWidget* FocusTimerView::firstFocus() const {
    return primary_;
}

void FocusTimerView::goOn() {
    FocusTimer& timer = services_.timer;
    const auto& session = *timer.session();
    if (!session)
        timer.start();
    else if (session->isPaused())
        timer.resume();
    else if (session->phase == Phase::ready)
        timer.startNextFocus();
    else
        timer.pause();
}

void FocusTimerView::refresh(FocusRing::Change change) {
    const auto& running = *services_.timer.session();
    const FocusSession session = running.value_or(firstSession(services_.settings.focusPlan.get()));
    countdown_.setSession(running);
    refreshRing(session, services_.reducesMotion() ? FocusRing::Change::atOnce : change);
    dots_->setState(RoundDots::stateOf(session, running.has_value()));
    QString line = tr("Then %1").arg(toQString(nextText(session)));
    if (running && session.phase == Phase::ready)
        line = tr("Ready for %1").arg(toQString(nextText(session)));
    else if (running)
        line = tr("Round %1 · then %2").arg(session.round).arg(toQString(nextText(session)));
    next_->setText(line);
    refreshButtons(session);
}

void FocusTimerView::refreshRing(const FocusSession& session, FocusRing::Change change) {
    const bool isRunning = services_.timer.session()->has_value();
    FocusRing::Content content{.title = toQString(phaseText(session)),
                               .seconds = countdown_.seconds(),
                               .length = session.phaseDuration,
                               .color = phaseColor(session),
                               .isResting = !session.endsAt};
    if (session.endsAt)
        content.note =
            tr("until %1").arg(toQString(services_.calendar.formatTime(*session.endsAt)));
    // Without a running phase it shows the one that the large button begins.
    if (!isRunning || session.phase == Phase::ready) {
        content.title = isRunning ? tr("Break's over") : tr("Focus");
        content.seconds = session.plan.focusMinutes * 60;
        content.length = 0;
    }
    ring_->setContent(std::move(content), change);
}

void FocusTimerView::refreshButtons(const FocusSession& session) {
    const bool isRunning = services_.timer.session()->has_value();
    const bool isReady = session.phase == Phase::ready;
    const auto name = [&](Button* button, const QString& text, const char* symbol) {
        button->setText(text);
        button->setSymbol(symbol);
    };
    if (!isRunning)
        name(primary_, tr("Start Focus"), "play");
    else if (session.isPaused())
        name(primary_, tr("Resume"), "play");
    else if (isReady)
        name(primary_, tr("Start Next Round"), "play");
    else
        name(primary_, tr("Pause"), "pause");
    primary_->setAccent(phaseColor(session));
    skip_->setText(session.isBreak() ? tr("Skip Break") : tr("Skip to Break"));
    skip_->updateGeometry();
    extend_->setText(isReady ? tr("5 More Minutes of Break") : tr("5 More Minutes of Focus"));
    extend_->updateGeometry();

    QWidget* focus = window()->focusWidget();
    extend_->setVisible(isRunning && (isReady || session.isBreak()));
    skip_->setVisible(isRunning && !isReady);
    stop_->setVisible(isRunning);
    // The keyboard does not leave with the button that was pressed.
    if (focus && isAncestorOf(focus) && focus->isHidden()) primary_->setFocus(Qt::OtherFocusReason);
}

}  // namespace tendel

#include "ui/window/FocusPlanCard.h"

#include <QGridLayout>

#include <algorithm>

#include "ui/theme/Label.h"
#include "ui/theme/Stepper.h"
#include "ui/window/FocusLook.h"

namespace tendel {

namespace {
constexpr int edge = 16;
constexpr int rowGap = 8;
}  // namespace

FocusPlanCard::FocusPlanCard(AppSettings& settings, QWidget* parent)
    : Card(parent),
      settings_(settings),
      focus_(new Stepper(tr("Focus length"),
                         {.least = 5, .most = 180, .step = 5, .suffix = tr(" min")})),
      break_(new Stepper(tr("Break length"),
                         {.least = 1, .most = 60, .step = 1, .suffix = tr(" min")})),
      longBreak_(
          new Stepper(tr("Rounds to a long break"), {.least = 2, .most = 8, .offText = tr("Off")})),
      explanation_(new Label({Theme::Type::caption, Theme::Color::secondary})) {
    setAccessibleName(tr("Plan"));
    explanation_->setWordWrap(true);
    auto* grid = new QGridLayout(this);
    grid->setContentsMargins(edge, 12, edge, 12);
    grid->setHorizontalSpacing(edge);
    grid->setVerticalSpacing(rowGap);
    grid->setColumnStretch(0, 1);
    int row = 0;
    const auto add = [&](const QString& name, Stepper* stepper) {
        grid->addWidget(new Label({Theme::Type::body}, name), row, 0);
        grid->addWidget(stepper, row++, 1, Qt::AlignRight);
    };
    add(tr("Focus"), focus_);
    add(tr("Break"), break_);
    add(tr("Long break"), longBreak_);
    grid->addWidget(explanation_, row, 0, 1, 2);
    const int widest = std::max(focus_->sizeHint().width(), break_->sizeHint().width());
    for (Stepper* each : {focus_, break_, longBreak_})
        each->setFixedWidth(std::max(widest, longBreak_->sizeHint().width()));

    connect(focus_, &Stepper::chosen, this, [this](int minutes) {
        edit([minutes](FocusPlan& plan) { plan.focusMinutes = minutes; });
    });
    connect(break_, &Stepper::chosen, this, [this](int minutes) {
        edit([minutes](FocusPlan& plan) { plan.breakMinutes = minutes; });
    });
    connect(longBreak_, &Stepper::chosen, this, [this](int rounds) {
        edit([rounds](FocusPlan& plan) {
            plan.longBreakEvery = rounds > 0 ? std::optional(rounds) : std::nullopt;
        });
    });
    planChanged_ = settings_.focusPlan.observe([this] { refresh(); });
    refresh();
}

void FocusPlanCard::edit(const std::function<void(FocusPlan&)>& change) {
    FocusPlan plan = settings_.focusPlan.get();
    change(plan);
    settings_.focusPlan.set(plan);
}

void FocusPlanCard::refresh() {
    const FocusPlan plan = settings_.focusPlan.get();
    focus_->setValue(plan.focusMinutes);
    break_->setValue(plan.breakMinutes);
    // Every 0 rounds counts as every round.
    longBreak_->setValue(plan.longBreakEvery ? std::max(*plan.longBreakEvery, 1) : 0);
    FocusPlan withLongBreaks = plan;
    withLongBreaks.longBreakEvery = plan.longBreakEvery.value_or(1);
    const bool canBeLong = hasLongBreaks(withLongBreaks);
    longBreak_->setEnabled(canBeLong);
    const QString rounds = plan.longBreakEvery ? QString::number(longBreak_->value()) : tr("few");
    const QString text =
        canBeLong
            ? tr("A longer break after every %1 focus blocks: three times your break, at "
                 "most 30 min.")
                  .arg(rounds)
            : tr("Long breaks are for short breaks of up to %1 min.").arg(longestBreakWithLongOnes);
    explanation_->setText(text);
    longBreak_->setExplanation(text);
}

}  // namespace tendel

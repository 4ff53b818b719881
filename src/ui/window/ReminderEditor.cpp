#include "ui/window/ReminderEditor.h"

#include <algorithm>

#include "library/ReminderDisplay.h"
#include "reminders/ReminderStatus.h"
#include "ui/theme/Button.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Label.h"
#include "ui/theme/QtText.h"
#include "ui/theme/SegmentedControl.h"
#include "ui/theme/SlimScrollArea.h"
#include "ui/theme/Switch.h"
#include "ui/theme/SymbolCircle.h"
#include "ui/theme/TextField.h"
#include "ui/window/LengthField.h"
#include "ui/window/PickerGrid.h"
#include "ui/window/ReminderWords.h"
#include "ui/window/TimeField.h"

namespace tendel {

Reminder ReminderEditor::newReminder(ReminderKind kind, const WorkingHours& hours) {
    Reminder reminder;
    reminder.setKind(kind);
    reminder.setStart(kind == ReminderKind::work ? hours.start : hours.end);
    reminder.intervalMinutes = 60;
    return reminder;
}

QWidget* ReminderEditor::firstField() const {
    return title_;
}

void ReminderEditor::setTimedBreak(bool isOn) {
    edit([&](Reminder& draft) {
        if (isOn)
            draft.durationSeconds = break_->value().value_or(lastBreakSeconds_);
        else
            draft.durationSeconds.reset();
    });
}

void ReminderEditor::chooseSymbol(int index) {
    edit([&](Reminder& draft) {
        if (index == 0)
            draft.symbolName.reset();
        else
            draft.symbolName = symbolNames_[static_cast<std::size_t>(index)];
    });
}

void ReminderEditor::chooseAnimation(int index) {
    edit([&](Reminder& draft) {
        if (index == 0)
            draft.animationChoice.reset();
        else if (index == 1)
            draft.animationChoice = noAnimation;
        else
            draft.animationChoice = exerciseAnimationNames[static_cast<std::size_t>(index - 2)];
    });
}

void ReminderEditor::refresh() {
    const ReminderKind kind = draft_.kind();
    emblem_->setSymbol(displaySymbol(draft_), accentRole(kind));
    kind_->setCurrent(kind == ReminderKind::work ? 0 : 1);
    const WorkingHours hours = app_.settings.workingHours.get();
    const Calendar& calendar = app_.platform.calendar;
    const QString span = toQString(calendar.formatTime(hours.start.hour, hours.start.minute)) +
                         u'–' + toQString(calendar.formatTime(hours.end.hour, hours.end.minute));
    kindNote_->setText(kind == ReminderKind::work
                           ? tr("Comes up within your working hours, %1 on workdays.").arg(span)
                           : tr("Comes up outside your working hours, all day on days off."));

    const auto preset = std::ranges::find(presetMinutes, draft_.intervalMinutes);
    presets_->setCurrent(preset == presetMinutes.end() || !interval_->value()
                             ? -1
                             : static_cast<int>(preset - presetMinutes.begin()));
    hasBreak_->setChecked(draft_.durationSeconds.has_value());
    break_->setVisible(draft_.durationSeconds.has_value());

    const bool isChosen = draft_.skipsWhenAwayChoice.has_value();
    skipsWhenAway_->setChecked(draft_.skipsWhenAway());
    awayDefault_->setVisible(isChosen);
    QString reason = draft_.durationSeconds ? tr("Automatic: on, since being away is a break too.")
                                            : tr("Automatic: off, since there is no timed break.");
    if (draft_.isBreakSuggestion)
        reason = draft_.skipsWhenAway() ? tr("Automatic: on, since this is a break.")
                                        : tr("Automatic: off, since this is not a break.");
    awayNote_->setText(isChosen ? tr("Your choice.") : reason);

    for (PickerGrid* grid : {presets_, symbols_, animations_})
        grid->setKind(kind);
    for (Switch* control : {hasBreak_, skipsWhenAway_})
        control->setKind(kind);
    const auto symbol = std::ranges::find(symbolNames_, draft_.symbolName.value_or(""));
    symbols_->setCurrent(static_cast<int>(symbol - symbolNames_.begin()));
    const QString symbolTitle = icons::spokenName(displaySymbol(draft_));
    symbolNote_->setText(draft_.symbolName ? symbolTitle : tr("Automatic: %1").arg(symbolTitle));

    int figure = 0;
    if (draft_.animationChoice == noAnimation) figure = 1;
    if (const auto chosen = exerciseAnimation(draft_.animationChoice.value_or("")))
        figure = static_cast<int>(*chosen) + 2;
    animations_->setCurrent(figure);
    refreshSentence();
}

void ReminderEditor::refreshSentence() {
    QString message;
    if (problem(message)) {
        sentence_->setColor(Theme::Color::missed);
        sentence_->setText(message);
        return;
    }
    if (isStored() && !app_.store.find(original_.id)) {
        sentence_->setColor(Theme::Color::missed);
        sentence_->setText(tr("This reminder was deleted meanwhile. Saving makes it anew."));
        return;
    }
    const Calendar& calendar = app_.platform.calendar;
    const Instant now = app_.platform.loop.now();
    ScheduleSearch search(calendar, app_.settings.workingHours.get());
    const auto status = ReminderStatus::of(draft_, now, search);
    const bool isWarning = status.state == ReminderStatus::Case::neverFires;
    sentence_->setColor(isWarning ? Theme::Color::missed : Theme::Color::secondary);
    sentence_->setText(toQString(sentence(draft_, status, now, calendar)));
}

QWidget* ReminderEditor::problem(QString& message) const {
    if (!start_->time()) {
        message = tr("Write the start time like 9:30.");
        return start_;
    }
    // A stored value out of the range stays until a person changes it.
    if (interval_->isEdited() && !interval_->value()) {
        message = tr("An interval is 1 minute to 24 hours long.");
        return interval_;
    }
    if (draft_.durationSeconds && break_->isEdited() && !break_->value()) {
        message = tr("A timed break is 5 seconds to 60 minutes long.");
        return break_;
    }
    return nullptr;
}

bool ReminderEditor::hasChanges() const {
    QString message;
    return draft_ != original_ || problem(message);
}

bool ReminderEditor::save() {
    QString message;
    if (QWidget* field = problem(message)) {
        field->setFocus(Qt::OtherFocusReason);
        scroll_->ensureWidgetVisible(field);
        refreshSentence();
        return false;
    }
    Reminder stored = draft_;
    const Reminder* current = isStored() ? app_.store.find(original_.id) : nullptr;
    // It may have been switched elsewhere while this form was open.
    if (current) stored.isOn = current->isOn;
    if (!isStored()) stored.createdAt = app_.platform.loop.now();
    const auto result = app_.store.save([&](Store::Writer& writer) {
        if (current)
            writer.update(stored);
        else
            stored.id = writer.insert(stored);
    });
    if (!result) {
        sentence_->setColor(Theme::Color::missed);
        sentence_->setText(tr("Not saved. %1").arg(toQString(result.error())));
        return false;
    }
    original_ = draft_ = stored;
    Q_EMIT saved(stored.id);
    return true;
}

}  // namespace tendel

#pragma once

#include <QWidget>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "app/TendelApp.h"

class QVBoxLayout;

namespace tendel {

class Button;
class Label;
class LengthField;
class PickerGrid;
class SegmentedControl;
class SlimScrollArea;
class Switch;
class SymbolCircle;
class TextField;
class TimeField;

// The form for one reminder, new or stored. A stored value changes only where a person changes it,
// so that odd ones survive. Nothing is stored before `save`.
class ReminderEditor : public QWidget {
    Q_OBJECT
public:
    // A reminder without an identifier is a new one.
    ReminderEditor(TendelApp& app, Reminder reminder, QWidget* parent = nullptr);

    // What a new reminder of this kind starts with: hourly, from where its part of the day begins.
    static Reminder newReminder(ReminderKind kind, const WorkingHours& hours);

    const Reminder& draft() const { return draft_; }
    // Whether something would be lost.
    bool hasChanges() const;
    // Stores the reminder. Otherwise says in the form what is missing or went wrong.
    bool save();
    QWidget* firstField() const;

Q_SIGNALS:
    void saved(ReminderId id);
    void cancelled();

private:
    static constexpr std::array presetMinutes{20, 30, 45, 60, 90, 120};
    static constexpr std::string_view noAnimation = "none";  // the stored choice

    void buildTexts(QVBoxLayout& form);
    void buildTimes(QVBoxLayout& form);
    void buildBreak(QVBoxLayout& form);
    void buildLook(QVBoxLayout& form);
    QWidget* makeHeader();
    QWidget* makeFooter();

    template <class Change>
    void edit(Change change) {
        change(draft_);
        refresh();
    }
    void setTimedBreak(bool isOn);
    void chooseSymbol(int index);
    void chooseAnimation(int index);
    // What stands in the form follows from the draft.
    void refresh();
    void refreshSentence();
    // The first field whose content cannot be taken, with what to say about it; null when all can.
    QWidget* problem(QString& message) const;
    bool isStored() const { return original_.id != ReminderId{}; }

    TendelApp& app_;
    Reminder original_;
    Reminder draft_;
    std::vector<std::string> symbolNames_;  // by cell; the first is "automatic"
    int lastBreakSeconds_ = 60;

    SlimScrollArea* scroll_;
    SymbolCircle* emblem_;
    TextField* title_;
    TextField* details_;
    SegmentedControl* kind_;
    Label* kindNote_;
    TimeField* start_;
    LengthField* interval_;
    PickerGrid* presets_;
    Switch* hasBreak_;
    LengthField* break_;
    Switch* skipsWhenAway_;
    Label* awayNote_;
    Button* awayDefault_;
    PickerGrid* symbols_;
    Label* symbolNote_;
    PickerGrid* animations_;
    Label* sentence_;
    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

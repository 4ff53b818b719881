#include "ui/window/ReminderEditor.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

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

namespace {

constexpr int edge = 24;
constexpr int groupGap = 20;
constexpr int labelGap = 4 - focusMargin;
constexpr LengthField::Range intervalRange{1, 24 * 60};  // minutes
constexpr LengthField::Range breakRange{5, 60 * 60};     // seconds

// Labels stand where the controls' shapes begin, inside the space for the focus ring.
Label* fieldLabel(const QString& text) {
    auto* label = new Label({Theme::Type::caption, Theme::Color::secondary, true}, text);
    label->setContentsMargins(focusMargin, 0, 0, 0);
    return label;
}

Label* note(const QString& text = {}) {
    auto* label = new Label({Theme::Type::caption, Theme::Color::secondary}, text);
    label->setWordWrap(true);
    label->setContentsMargins(focusMargin, 0, focusMargin, 0);
    return label;
}

void addField(QVBoxLayout& form, const QString& name, QWidget* field) {
    auto* label = fieldLabel(name);
    label->setBuddy(field);
    form.addWidget(label);
    form.addSpacing(labelGap);
    form.addWidget(field);
}

// A strip set apart from the form, which scrolls between two of them.
class Bar : public QWidget {
public:
    explicit Bar(Qt::Edge lineAt) : lineAt_(lineAt) {}

protected:
    void paintEvent(QPaintEvent*) override {
        const double line = 1 / devicePixelRatioF();
        const double y = lineAt_ == Qt::TopEdge ? 0 : height() - line;
        QPainter(this).fillRect(QRectF(0, y, width(), line),
                                Theme::instance().color(Theme::Color::hairline));
    }

private:
    Qt::Edge lineAt_;
};

QString animationTitle(ExerciseAnimation animation) {
    QString text = toQString(rawValue(animation));
    text[0] = text[0].toUpper();
    return text;
}

}  // namespace

ReminderEditor::ReminderEditor(TendelApp& app, Reminder reminder, QWidget* parent)
    : QWidget(parent), app_(app), original_(reminder), draft_(std::move(reminder)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHeader());

    scroll_ = new SlimScrollArea;
    auto* content = new QWidget;
    auto* form = new QVBoxLayout(content);
    form->setContentsMargins(edge - focusMargin, 16, edge - focusMargin - SlimScrollArea::barWidth,
                             16);
    form->setSpacing(0);
    buildTexts(*form);
    form->addSpacing(groupGap);
    buildTimes(*form);
    form->addSpacing(groupGap);
    buildBreak(*form);
    form->addSpacing(groupGap);
    buildLook(*form);
    form->addStretch();
    scroll_->setWidget(content);
    content->setAutoFillBackground(false);
    column->addWidget(scroll_, 1);
    column->addWidget(makeFooter());

    refresh();
    const auto look = [this] { refreshSentence(); };
    subscriptions_.push_back(app_.scheduler.now().observe(look));
    subscriptions_.push_back(app_.store.saved.connect(look));
}

QWidget* ReminderEditor::makeHeader() {
    auto* header = new Bar(Qt::BottomEdge);
    auto* row = new QHBoxLayout(header);
    row->setContentsMargins(edge, 16, edge, 16);
    row->setSpacing(12);
    emblem_ = new SymbolCircle(40, "bell", Theme::Color::workAccent);
    row->addWidget(emblem_);
    row->addWidget(new Label({Theme::Type::title, Theme::Color::text, true},
                             isStored() ? tr("Edit Reminder") : tr("New Reminder")),
                   1);
    return header;
}

void ReminderEditor::buildTexts(QVBoxLayout& form) {
    title_ = new TextField(tr("Title"));
    title_->setPlaceholderText(tr("Look away, drink water, call home …"));
    title_->setText(toQString(draft_.title));
    connect(title_, &QLineEdit::textEdited, this, [this](const QString& text) {
        edit([&](Reminder& draft) { draft.title = text.trimmed().toStdString(); });
    });
    addField(form, tr("Title"), title_);
    form.addSpacing(12 - focusMargin);

    details_ = new TextField(tr("Details"));
    details_->setPlaceholderText(tr("What to do, in a few words"));
    if (draft_.details != detailsPlaceholder) details_->setText(toQString(draft_.details));
    details_->setCursorPosition(0);  // long ones show their beginning
    connect(details_, &QLineEdit::textEdited, this, [this](const QString& text) {
        edit([&](Reminder& draft) { draft.details = text.trimmed().toStdString(); });
    });
    addField(form, tr("Details"), details_);
    form.addSpacing(12 - focusMargin);

    kind_ = new SegmentedControl(tr("Kind"), {tr("Work"), tr("Private")});
    connect(kind_, &SegmentedControl::chosen, this, [this](int index) {
        edit([&](Reminder& draft) {
            draft.setKind(index == 0 ? ReminderKind::work : ReminderKind::private_);
        });
    });
    addField(form, tr("Kind"), kind_);
    kindNote_ = note();
    form.addWidget(kindNote_);
}

void ReminderEditor::buildTimes(QVBoxLayout& form) {
    start_ = new TimeField(tr("Start time"), [this](TimeOfDay time) {
        const bool isOnClock =
            time.hour >= 0 && time.hour < 24 && time.minute >= 0 && time.minute < 60;
        if (isOnClock) return toQString(app_.platform.calendar.formatTime(time.hour, time.minute));
        return QStringLiteral("%1:%2").arg(time.hour).arg(time.minute, 2, 10, QChar(u'0'));
    });
    start_->setTime(draft_.start());
    connect(start_, &TimeField::edited, this, [this] {
        edit([&](Reminder& draft) { draft.setStart(start_->time().value_or(draft.start())); });
    });

    interval_ =
        new LengthField(tr("Interval"), {{tr("minutes"), 1}, {tr("hours"), 60}}, intervalRange);
    interval_->setValue(draft_.intervalMinutes);
    connect(interval_, &LengthField::edited, this, [this] {
        edit([&](Reminder& draft) {
            draft.intervalMinutes = interval_->value().value_or(draft.intervalMinutes);
        });
    });

    auto* row = new QHBoxLayout;
    row->setSpacing(16 - 2 * focusMargin);
    for (const auto& [name, field] :
         {std::pair<QString, QWidget*>{tr("Start time"), start_}, {tr("Interval"), interval_}}) {
        auto* column = new QVBoxLayout;
        column->setSpacing(0);
        addField(*column, name, field);
        row->addLayout(column, field == interval_ ? 1 : 0);
    }
    form.addLayout(row);
    form.addSpacing(8 - 2 * focusMargin);

    std::vector<PickerGrid::Cell> cells;
    for (const int minutes : presetMinutes)
        cells.push_back(
            {"", toQString(lengthText(60 * minutes)), toQString(intervalText(minutes))});
    presets_ = new PickerGrid(tr("Usual intervals"), std::move(cells), presetMinutes.size());
    connect(presets_, &PickerGrid::chosen, this, [this](int index) {
        const int minutes = presetMinutes[static_cast<std::size_t>(index)];
        interval_->setValue(minutes);
        edit([&](Reminder& draft) { draft.intervalMinutes = minutes; });
    });
    form.addWidget(presets_);
}

void ReminderEditor::buildBreak(QVBoxLayout& form) {
    const auto addSwitch = [&](const QString& name, Switch* control) {
        auto* row = new QHBoxLayout;
        auto* label = new Label({}, name);
        label->setContentsMargins(focusMargin, 0, 0, 0);
        label->setBuddy(control);
        row->addWidget(label, 1);
        row->addWidget(control);
        form.addLayout(row);
    };
    hasBreak_ = new Switch(tr("Timed break"));
    connect(hasBreak_, &QAbstractButton::clicked, this, &ReminderEditor::setTimedBreak);
    addSwitch(tr("Timed break"), hasBreak_);
    form.addWidget(note(tr("The alert counts down while you take it.")));
    break_ =
        new LengthField(tr("Break length"), {{tr("seconds"), 1}, {tr("minutes"), 60}}, breakRange);
    if (draft_.durationSeconds) lastBreakSeconds_ = *draft_.durationSeconds;
    break_->setValue(lastBreakSeconds_);
    connect(break_, &LengthField::edited, this, [this] {
        edit([&](Reminder& draft) {
            if (const auto seconds = break_->value()) draft.durationSeconds = seconds;
        });
    });
    form.addWidget(break_);
    form.addSpacing(groupGap - 4);

    skipsWhenAway_ = new Switch(tr("Stepping away counts as done"));
    connect(skipsWhenAway_, &QAbstractButton::clicked, this, [this](bool isOn) {
        edit([&](Reminder& draft) { draft.skipsWhenAwayChoice = isOn; });
    });
    addSwitch(tr("Stepping away counts as done"), skipsWhenAway_);
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    awayNote_ = note();
    row->addWidget(awayNote_, 1);
    awayDefault_ = new Button(Button::Role::quiet, tr("Automatic"));
    awayDefault_->setAccessibleName(tr("Stepping away counts as done: automatic"));
    connect(awayDefault_, &QAbstractButton::clicked, this, [this] {
        skipsWhenAway_->setFocus(Qt::TabFocusReason);
        edit([&](Reminder& draft) { draft.skipsWhenAwayChoice.reset(); });
    });
    row->addWidget(awayDefault_);
    form.addLayout(row);
}

void ReminderEditor::buildLook(QVBoxLayout& form) {
    auto* head = new QHBoxLayout;
    head->addWidget(fieldLabel(tr("Symbol")));
    symbolNote_ = note();
    symbolNote_->setAlignment(Qt::AlignRight);
    head->addWidget(symbolNote_, 1);
    form.addLayout(head);
    form.addSpacing(labelGap);

    std::vector<PickerGrid::Cell> cells{{"sparkles", {}, tr("Automatic")}};
    symbolNames_ = {""};
    const auto offer = [&](const std::string& symbol) {
        symbolNames_.push_back(symbol);
        cells.push_back({symbol, {}, icons::spokenName(symbol)});
    };
    for (const QString& symbol : icons::choices())
        offer(symbol.toStdString());
    // A stored one that is not offered stays choosable, or looking at others would lose it.
    if (draft_.symbolName &&
        std::ranges::find(symbolNames_, *draft_.symbolName) == symbolNames_.end())
        offer(*draft_.symbolName);
    symbols_ = new PickerGrid(tr("Symbol"), std::move(cells), 10);
    connect(symbols_, &PickerGrid::chosen, this, &ReminderEditor::chooseSymbol);
    form.addWidget(symbols_);
    form.addSpacing(groupGap - focusMargin);

    std::vector<PickerGrid::Cell> figures{{"sparkles", tr("Automatic"), tr("Automatic")},
                                          {"minus", tr("None"), tr("None")}};
    for (const std::string_view name : exerciseAnimationNames) {
        const ExerciseAnimation animation = *exerciseAnimation(name);
        figures.push_back({std::string(icons::symbolOf(animation)), animationTitle(animation),
                           animationTitle(animation)});
    }
    animations_ = new PickerGrid(tr("Figure"), std::move(figures), 4);
    connect(animations_, &PickerGrid::chosen, this, &ReminderEditor::chooseAnimation);
    addField(form, tr("Figure"), animations_);
}

QWidget* ReminderEditor::makeFooter() {
    auto* footer = new Bar(Qt::TopEdge);
    auto* row = new QHBoxLayout(footer);
    row->setContentsMargins(edge, 14 - focusMargin, edge - focusMargin, 16 - focusMargin);
    row->setSpacing(2);
    sentence_ = new Label({Theme::Type::body, Theme::Color::secondary});
    sentence_->setAccessibleName(tr("What happens"));
    sentence_->setWordWrap(true);
    sentence_->setMinimumHeight(2 * sentence_->fontMetrics().height());
    row->addWidget(sentence_, 1);
    row->addSpacing(10);
    auto* cancel = new Button(Button::Role::normal, tr("Cancel"));
    connect(cancel, &QAbstractButton::clicked, this, &ReminderEditor::cancelled);
    row->addWidget(cancel);
    auto* done = new Button(Button::Role::primary, tr("Save"));
    connect(done, &QAbstractButton::clicked, this, &ReminderEditor::save);
    row->addWidget(done);
    return footer;
}

}  // namespace tendel

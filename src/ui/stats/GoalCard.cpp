#include "ui/stats/GoalCard.h"

#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "base/Text.h"
#include "stats/DailyGoals.h"
#include "ui/theme/Button.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Label.h"
#include "ui/theme/QtText.h"
#include "ui/theme/TextField.h"

namespace tendel {

namespace {
constexpr int edge = 16;
constexpr int mostCharacters = 200;

// The text with places to break its longest words, which would be cut off in a narrow window.
QString breakable(const QString& text) {
    constexpr int longestWhole = 24;
    constexpr QChar breakHere(0x200b);  // zero width space
    QString broken;
    int run = 0;
    for (const QChar each : text) {
        run = each.isSpace() ? 0 : run + 1;
        if (run > longestWhole && !each.isLowSurrogate() && !each.isMark()) {
            broken += breakHere;
            run = 1;
        }
        broken += each;
    }
    return broken;
}
}  // namespace

// The circle before the goal, which is ticked off with it.
class GoalCard::Mark : public PaintedButton {
public:
    void setDone(bool isDone) {
        isDone_ = isDone;
        const QString name = isDone ? tr("Mark the goal as not done") : tr("Mark the goal as done");
        setAccessibleName(name);
        setToolTip(name);
        update();
    }

    QSize sizeHint() const override { return {28 + 2 * focusMargin, 28 + 2 * focusMargin}; }

protected:
    void paintEvent(QPaintEvent*) override {
        const Theme& theme = Theme::instance();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        constexpr double diameter = 22;
        QRectF circle(0, 0, diameter, diameter);
        circle.moveCenter(shape().center());
        if (showsFocus()) drawFocusRing(painter, circle.adjusted(-1, -1, 1, 1), diameter / 2 + 1);
        const QColor good = theme.color(Theme::Color::good);
        painter.setPen(isDone_
                           ? QPen(Qt::NoPen)
                           : QPen(isHovered() ? good : theme.color(Theme::Color::secondary), 2));
        painter.setBrush(isDone_ ? good : QColor(Qt::transparent));
        const double inset = isDone_ ? 0 : 1;
        painter.drawEllipse(circle.adjusted(inset, inset, -inset, -inset));
        const QRectF symbol = circle.adjusted(3, 3, -3, -3);
        if (isDone_)
            icons::draw(painter, "check", symbol, Theme::textOn(good));
        else if (isHovered())
            icons::draw(painter, "check", symbol, good);
    }

private:
    bool isDone_ = false;
};

GoalCard::GoalCard(AppSettings& settings, const EventLoop& loop, const Calendar& calendar,
                   QWidget* parent)
    : Card(parent),
      settings_(settings),
      loop_(loop),
      calendar_(calendar),
      goalRow_(new QWidget),
      mark_(new Mark),
      caption_(new Label({Theme::Type::caption, Theme::Color::secondary})),
      text_(new Label({Theme::Type::title, Theme::Color::text, true})),
      editButton_(new IconButton("pencil", tr("Edit today's goal"))),
      fieldRow_(new QWidget),
      field_(new TextField(tr("What's your one goal for today?"))),
      cancel_(new Button(Button::Role::quiet, tr("Cancel"))),
      remove_(new IconButton("trash", tr("Remove today's goal"))),
      set_(new Button(Button::Role::normal, tr("Set today's goal"))) {
    setAccessibleName(tr("Today's goal"));
    auto* column = new QVBoxLayout(this);
    // Controls keep room for their focus rings around them.
    column->setContentsMargins(edge - focusMargin, 12 - focusMargin, edge - focusMargin,
                               12 - focusMargin);
    column->setSpacing(4);

    auto* row = new QHBoxLayout(goalRow_);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(mark_);
    auto* words = new QVBoxLayout;
    words->setSpacing(0);
    words->addWidget(caption_);
    text_->setWordWrap(true);
    text_->setMinimumWidth(1);  // else it is as wide as its longest word
    words->addWidget(text_);
    row->addLayout(words, 1);
    row->addWidget(editButton_);
    column->addWidget(goalRow_);

    auto* fields = new QHBoxLayout(fieldRow_);
    fields->setContentsMargins(0, 0, 0, 0);
    fields->setSpacing(4);
    field_->setPlaceholderText(field_->accessibleName());
    field_->setMaxLength(mostCharacters);
    field_->installEventFilter(this);
    fields->addWidget(field_, 1);
    fields->addWidget(remove_);
    fields->addWidget(cancel_);
    fields->addWidget(set_);
    column->addWidget(fieldRow_);

    connect(mark_, &QAbstractButton::clicked, this, &GoalCard::toggle);
    connect(editButton_, &QAbstractButton::clicked, this, &GoalCard::edit);
    connect(cancel_, &QAbstractButton::clicked, this, &GoalCard::leaveEditing);
    connect(remove_, &QAbstractButton::clicked, this, &GoalCard::remove);
    connect(set_, &QAbstractButton::clicked, this, &GoalCard::save);
    connect(field_, &QLineEdit::returnPressed, this, &GoalCard::save);
    connect(field_, &QLineEdit::textChanged, this, [this](const QString& text) {
        set_->setEnabled(!trimmed(text.toStdString()).empty());
    });
    set_->setEnabled(false);
    goalChanged_ = settings_.dailyGoal.observe([this] { refresh(); });
    refresh();
}

void GoalCard::refresh() {
    const auto& goal = settings_.dailyGoal.get();
    const GoalDay day = goalDay(goal, loop_.now(), calendar_);
    if (day != GoalDay::today) isEditing_ = false;
    const bool showsGoal = day != GoalDay::none && !isEditing_;
    const bool showsField = day != GoalDay::today || isEditing_;
    goalRow_->setVisible(showsGoal);
    editButton_->setVisible(day == GoalDay::today);
    fieldRow_->setVisible(showsField);
    cancel_->setVisible(isEditing_);
    remove_->setVisible(isEditing_);
    if (!showsGoal) return;
    caption_->setText(toQString(goalCaption(*goal, loop_.now(), calendar_)));
    text_->setText(breakable(toQString(goal->text)));
    text_->setAccessibleName(toQString(goal->text));
    const bool isQuiet = goal->isDone || day == GoalDay::another;
    text_->setColor(isQuiet ? Theme::Color::secondary : Theme::Color::text);
    mark_->setDone(goal->isDone);
}

void GoalCard::edit() {
    isEditing_ = true;
    field_->setText(toQString(settings_.dailyGoal.get()->text));
    refresh();
    field_->setFocus(Qt::OtherFocusReason);
    field_->selectAll();
}

void GoalCard::leaveEditing() {
    isEditing_ = false;
    field_->clear();
    refresh();
    (editButton_->isVisible() ? static_cast<QWidget*>(editButton_) : field_)
        ->setFocus(Qt::OtherFocusReason);
}

void GoalCard::save() {
    const auto& previous = settings_.dailyGoal.get();
    auto goal = goalForToday(field_->text().toStdString(), previous, loop_.now(), calendar_);
    if (!goal) return;
    isEditing_ = false;
    field_->clear();
    if (goal == previous)
        refresh();
    else
        settings_.dailyGoal.set(std::move(goal));
    mark_->setFocus(Qt::OtherFocusReason);
}

void GoalCard::remove() {
    isEditing_ = false;
    field_->clear();
    settings_.dailyGoal.set(std::nullopt);
    field_->setFocus(Qt::OtherFocusReason);
}

void GoalCard::toggle() {
    auto goal = settings_.dailyGoal.get();
    if (!goal) return;
    goal->isDone = !goal->isDone;
    settings_.dailyGoal.set(std::move(goal));
}

bool GoalCard::eventFilter(QObject* watched, QEvent* event) {
    const bool isEscape = event->type() == QEvent::KeyPress &&
                          static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
    if (!isEscape || !isEditing_) return Card::eventFilter(watched, event);
    leaveEditing();
    return true;
}

}  // namespace tendel

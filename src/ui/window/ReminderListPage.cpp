#include "ui/window/ReminderListPage.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPointer>
#include <QVBoxLayout>

#include <algorithm>
#include <unordered_map>

#include "reminders/ReminderStatus.h"
#include "ui/theme/Button.h"
#include "ui/theme/Label.h"
#include "ui/theme/QtText.h"
#include "ui/theme/SlimScrollArea.h"
#include "ui/theme/SymbolCircle.h"
#include "ui/window/DayTimelineCard.h"

namespace tendel {

namespace {

constexpr int widestColumn = 840;
constexpr int cardGap = 8;

QString titleOf(ReminderKind kind) {
    return kind == ReminderKind::work ? ReminderListPage::tr("Work Reminders")
                                      : ReminderListPage::tr("Private Reminders");
}

}  // namespace

ReminderListPage::ReminderListPage(TendelApp& app, ReminderKind kind, QWidget* parent)
    : QWidget(parent), app_(app), kind_(kind) {
    setAccessibleName(titleOf(kind));
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addWidget(makeHeader());

    message_ = new Label({Theme::Type::body, Theme::Color::missed});
    message_->setWordWrap(true);
    message_->setContentsMargins(edge, 0, edge, 12);
    message_->hide();
    page->addWidget(message_);
    page->addWidget(makeTimeline());

    scroll_ = new SlimScrollArea;
    auto* content = new QWidget;
    auto* centred = new QHBoxLayout(content);
    centred->setContentsMargins(edge - focusMargin, 0,
                                edge - focusMargin - SlimScrollArea::barWidth, edge - focusMargin);
    auto* cards = new QWidget;
    cards->setMaximumWidth(widestColumn);
    column_ = new QVBoxLayout(cards);
    column_->setContentsMargins(0, 0, 0, 0);
    column_->setSpacing(cardGap - 2 * focusMargin);
    column_->addStretch();
    centred->addWidget(cards);
    scroll_->setWidget(content);
    content->setAutoFillBackground(false);
    page->addWidget(scroll_, 1);

    emptyState_ = makeEmptyState();
    page->addWidget(emptyState_, 1);

    const auto look = [this] { refresh(); };
    subscriptions_.push_back(app_.store.saved.connect(look));
    subscriptions_.push_back(app_.scheduler.now().observe(look));
    subscriptions_.push_back(app_.scheduler.pausedUntil().observe(look));
    subscriptions_.push_back(app_.settings.workingHours.observe(look));
    subscriptions_.push_back(app_.platform.loop.timeZoneChanged.connect(look));
}

int ReminderListPage::leftOfColumn(int width) {
    return std::max(edge, (width - widestColumn) / 2 + focusMargin);
}

QWidget* ReminderListPage::makeHeader() {
    auto* header = new QWidget;
    auto* centred = new QHBoxLayout(header);
    centred->setContentsMargins(edge, edge - 3, edge - focusMargin, 16 - focusMargin);
    auto* inner = new QWidget;
    inner->setMaximumWidth(widestColumn - focusMargin);
    centred->addWidget(inner);
    auto* row = new QHBoxLayout(inner);
    row->setContentsMargins(0, 0, 0, 0);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(2);
    texts->addWidget(new Label({Theme::Type::section, Theme::Color::text, true}, titleOf(kind_)));
    summary_ = new Label({Theme::Type::body, Theme::Color::secondary});
    summary_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    texts->addWidget(summary_);
    row->addLayout(texts, 1);
    newButton_ = new Button(Button::Role::primary, tr("New Reminder"));
    newButton_->setSymbol("plus");
    newButton_->setToolTip(tr("Ctrl+N"));
    connect(newButton_, &QAbstractButton::clicked, this, &ReminderListPage::newRequested);
    row->addWidget(newButton_, 0, Qt::AlignTop);
    return header;
}

QWidget* ReminderListPage::makeTimeline() {
    timeline_ = new QWidget;
    auto* centred = new QHBoxLayout(timeline_);
    centred->setContentsMargins(edge, 0, edge, 2 * cardGap - focusMargin);
    auto* card = new DayTimelineCard(app_);
    card->setMaximumWidth(widestColumn - 2 * focusMargin);
    centred->addWidget(card);
    return timeline_;
}

QWidget* ReminderListPage::makeEmptyState() {
    const bool isWork = kind_ == ReminderKind::work;
    auto* state = new QWidget;
    auto* column = new QVBoxLayout(state);
    column->setContentsMargins(edge, 0, edge, 72);
    column->setSpacing(0);
    column->addStretch();
    column->addWidget(new SymbolCircle(64, "bell", accentRole(kind_)), 0, Qt::AlignHCenter);
    column->addSpacing(16);
    auto* title = new Label(
        {Theme::Type::title, Theme::Color::text, true},
        isWork ? tr("Nothing reminds you at work yet") : tr("Nothing reminds you after work yet"));
    title->setAlignment(Qt::AlignHCenter);
    column->addWidget(title);
    column->addSpacing(4);
    auto* text =
        new Label({Theme::Type::body, Theme::Color::secondary},
                  isWork ? tr("Rest your eyes, stretch, drink some water: a work reminder comes "
                              "up inside your working hours.")
                         : tr("A private reminder comes up outside your working hours, and all "
                              "day on your days off."));
    text->setAlignment(Qt::AlignHCenter);
    text->setWordWrap(true);
    text->setFixedWidth(340);
    auto* centred = new QHBoxLayout;  // which, unlike an alignment, asks for the wrapped height
    centred->addStretch();
    centred->addWidget(text);
    centred->addStretch();
    column->addLayout(centred);
    column->addSpacing(16);
    emptyStateButton_ = new Button(Button::Role::primary, tr("New Reminder"));
    emptyStateButton_->setSymbol("plus");
    connect(emptyStateButton_, &QAbstractButton::clicked, this, &ReminderListPage::newRequested);
    column->addWidget(emptyStateButton_, 0, Qt::AlignHCenter);
    column->addStretch();
    return state;
}

void ReminderListPage::showEvent(QShowEvent* event) {
    refresh();
    QWidget::showEvent(event);
}

void ReminderListPage::refresh() {
    if (isHidden()) return;  // looks again when it is shown
    const Instant now = app_.scheduler.now().get();
    const Calendar& calendar = app_.platform.calendar;
    const WorkingHours hours = app_.settings.workingHours.get();
    ScheduleSearch search(calendar, hours);
    std::vector<ReminderCard::Content> contents;
    std::optional<Instant> next;
    for (const Reminder& reminder : app_.store.reminders()) {
        if (reminder.kind() != kind_) continue;
        const auto status = ReminderStatus::of(reminder, now, search);
        if (status.state == ReminderStatus::Case::next && (!next || status.next < *next))
            next = status.next;
        contents.push_back({reminder, toQString(status.text(now, hours, calendar)),
                            status.state == ReminderStatus::Case::neverFires});
    }

    // The list changes in few places at a time; the cards of reminders that are still there are
    // kept, in the store's order.
    std::vector<ReminderCard*> kept;
    std::unordered_map<ReminderId, ReminderCard*> known;
    for (ReminderCard* card : cards_)
        known.emplace(card->reminder().id, card);
    for (std::size_t i = 0; i < contents.size(); ++i) {
        const ReminderId id = contents[i].reminder.id;
        ReminderCard* card = nullptr;
        if (const auto found = known.find(id); found != known.end()) {
            card = found->second;
            card->setContent(std::move(contents[i]));
            known.erase(found);
        } else {
            card = makeCard(std::move(contents[i]));
            column_->insertWidget(static_cast<int>(i), card);
        }
        kept.push_back(card);
    }
    for (const auto& [id, card] : known) {
        column_->removeWidget(card);
        card->hide();
        card->deleteLater();
    }
    cards_ = std::move(kept);

    const bool isEmpty = cards_.empty();
    newButton_->setVisible(!isEmpty);
    timeline_->setVisible(!app_.store.reminders().empty());
    scroll_->setVisible(!isEmpty);
    emptyState_->setVisible(isEmpty);
    summary_->setText(summary(now, next));
}

// Under the title: how many, and what comes next.
QString ReminderListPage::summary(Instant now, std::optional<Instant> next) const {
    if (cards_.empty()) return {};
    if (std::ranges::none_of(cards_, [](const auto* card) { return card->reminder().isOn; }))
        return tr("All reminders are off");
    const auto count = cards_.size();
    const QString many =
        count == 1 ? tr("1 reminder") : tr("%1 reminders").arg(static_cast<qulonglong>(count));
    const Calendar& calendar = app_.platform.calendar;
    // The window's foot says until when.
    if (app_.scheduler.pausedUntil().get()) return many;
    if (!next || !calendar.day(now).contains(*next)) return many + tr(" · nothing more today");
    return many + tr(" · next at ") + toQString(calendar.formatTime(*next));
}

ReminderCard* ReminderListPage::makeCard(ReminderCard::Content content) {
    const ReminderId id = content.reminder.id;
    auto* card = new ReminderCard(std::move(content));
    connect(card, &ReminderCard::editRequested, this, [this, id] { Q_EMIT editRequested(id); });
    connect(card, &ReminderCard::deleteRequested, this, [this, id] { Q_EMIT deleteRequested(id); });
    connect(card, &ReminderCard::duplicateRequested, this, [this, id] { duplicate(id); });
    connect(card, &ReminderCard::switched, this, [this, id](bool isOn) { setOn(id, isOn); });
    return card;
}

bool ReminderListPage::save(const QString& what,
                            const std::function<void(Store::Writer&)>& changes) {
    const auto saved = app_.store.save(changes);
    message_->setVisible(!saved);
    if (!saved) {
        message_->setText(what + u' ' + toQString(saved.error()));
        refresh();  // the switch that was moved goes back
    }
    return static_cast<bool>(saved);
}

void ReminderListPage::setOn(ReminderId id, bool isOn) {
    const Reminder* found = app_.store.find(id);
    if (!found) return;
    Reminder changed = *found;
    changed.isOn = isOn;
    save(tr("The reminder couldn't be switched."),
         [&](Store::Writer& writer) { writer.update(changed); });
}

void ReminderListPage::duplicate(ReminderId id) {
    const Reminder* found = app_.store.find(id);
    if (!found) return;
    const Reminder copy = found->duplicated(app_.platform.loop.now());
    ReminderId made;
    if (save(tr("The reminder couldn't be duplicated."),
             [&](Store::Writer& writer) { made = writer.insert(copy); }))
        focusReminder(made);
}

void ReminderListPage::remove(ReminderId id) {
    const auto gone = std::ranges::find(cards_, id, [](auto* card) { return card->reminder().id; });
    std::optional<ReminderId> neighbour;
    if (gone != cards_.end()) {
        if (gone + 1 != cards_.end())
            neighbour = (*(gone + 1))->reminder().id;
        else if (gone != cards_.begin())
            neighbour = (*(gone - 1))->reminder().id;
    }
    if (!save(tr("The reminder couldn't be deleted."),
              [&](Store::Writer& writer) { writer.remove(id); }))
        return focusReminder(id);
    if (neighbour)
        focusReminder(*neighbour);
    else
        firstFocus()->setFocus(Qt::OtherFocusReason);
}

QWidget* ReminderListPage::firstFocus() const {
    if (cards_.empty()) return emptyStateButton_;
    return cards_.front();
}

void ReminderListPage::focusReminder(ReminderId id) {
    const auto card = std::ranges::find(cards_, id, [](auto* each) { return each->reminder().id; });
    if (card == cards_.end()) return;
    // A card that was just made has no place yet.
    if (auto* content = scroll_->widget(); content->layout()) {
        content->layout()->activate();
        column_->activate();
    }
    (*card)->setFocus(Qt::OtherFocusReason);
    QMetaObject::invokeMethod(
        this,
        [this, shown = QPointer(*card)] {
            if (shown) scroll_->ensureWidgetVisible(shown, 0, edge);
        },
        Qt::QueuedConnection);
}

void ReminderListPage::moveFocus(int step) {
    QWidget* focus = QApplication::focusWidget();
    const auto at = std::ranges::find_if(
        cards_, [&](auto* card) { return card == focus || card->isAncestorOf(focus); });
    if (!focus || at == cards_.end()) return;
    const auto last = static_cast<std::ptrdiff_t>(cards_.size()) - 1;
    const auto next = std::clamp<std::ptrdiff_t>(at - cards_.begin() + step, 0, last);
    QWidget* card = cards_[static_cast<std::size_t>(next)];
    card->setFocus(Qt::TabFocusReason);
    scroll_->ensureWidgetVisible(card, 0, edge);
}

void ReminderListPage::keyPressEvent(QKeyEvent* event) {
    const int all = static_cast<int>(cards_.size());
    const int screenful = std::max(1, scroll_->height() / 80);
    switch (event->key()) {
        case Qt::Key_Up:
            return moveFocus(-1);
        case Qt::Key_Down:
            return moveFocus(1);
        case Qt::Key_PageUp:
            return moveFocus(-screenful);
        case Qt::Key_PageDown:
            return moveFocus(screenful);
        case Qt::Key_Home:
            return moveFocus(-all);
        case Qt::Key_End:
            return moveFocus(all);
        default:
            QWidget::keyPressEvent(event);
    }
}

}  // namespace tendel

#include "ui/stats/StatsPage.h"

#include <QAccessible>
#include <QFocusEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QMenu>
#include <QVBoxLayout>

#include <algorithm>

#include "library/ReminderDisplay.h"
#include "ui/stats/GoalCard.h"
#include "ui/stats/HabitList.h"
#include "ui/stats/StatsChart.h"
#include "ui/stats/StatsGhost.h"
#include "ui/stats/StatsSentences.h"
#include "ui/stats/StatsTiles.h"
#include "ui/theme/Button.h"
#include "ui/theme/Card.h"
#include "ui/theme/Label.h"
#include "ui/theme/QtText.h"
#include "ui/theme/SegmentedControl.h"
#include "ui/theme/SlimScrollArea.h"
#include "ui/theme/SymbolCircle.h"

namespace tendel {

namespace {

constexpr int edge = 24;
constexpr int widestColumn = 840;
constexpr int cardGap = 12;
constexpr int groupGap = 24;
constexpr int controlsGap = 12;

// A column of at most that width in the middle of `around`.
QWidget* centredIn(QWidget* around, const QMargins& margins) {
    auto* row = new QHBoxLayout(around);
    row->setContentsMargins(margins);
    auto* inner = new QWidget;
    inner->setMaximumWidth(widestColumn);
    row->addWidget(inner);
    return inner;
}

// A layout around what has no focus ring, so that its edge is that of the controls' shapes.
QLayout* inset(QWidget* widget) {
    auto* around = new QHBoxLayout;
    around->setContentsMargins(focusMargin, 0, focusMargin, 0);
    around->addWidget(widget);
    return around;
}

}  // namespace

StatsPage::StatsPage(TendelApp& app, QWidget* parent)
    : QWidget(parent),
      app_(app),
      transfer_(new HistoryTransfer(app.store, app.platform.loop, app.platform.calendar, this)) {
    setAccessibleName(tr("Stats"));
    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(0, 0, 0, 0);
    page->setSpacing(0);
    page->addWidget(makeHeader());

    scroll_ = new SlimScrollArea;
    auto* content = new QWidget;
    auto* inner = centredIn(
        content, {edge - focusMargin, 0, edge - focusMargin - SlimScrollArea::barWidth, edge});
    auto* column = new QVBoxLayout(inner);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    goal_ = new GoalCard(app_.settings, app_.platform.loop, app_.platform.calendar);
    column->addLayout(inset(goal_));
    column->addSpacing(cardGap - focusMargin);
    ghost_ = new StatsGhost;
    column->addLayout(inset(ghost_));
    figures_ = makeFigures();
    column->addWidget(figures_);
    column->addStretch();
    scroll_->setWidget(content);
    content->setAutoFillBackground(false);
    page->addWidget(scroll_, 1);
    for (QWidget* each : content->findChildren<QWidget*>())
        each->installEventFilter(this);

    connect(transfer_, &HistoryTransfer::told, this, &StatsPage::tell);
    const auto look = [this] { refresh_.request(); };
    subscriptions_.push_back(app_.settings.statsRange.observe(look));
    subscriptions_.push_back(app_.settings.statsFilter.observe(look));
    subscriptions_.push_back(app_.platform.loop.timeZoneChanged.connect(look));
    subscriptions_.push_back(app_.scheduler.now().observe([this] { lookAtClock(); }));
}

QWidget* StatsPage::makeHeader() {
    auto* header = new QWidget;
    auto* inner =
        centredIn(header, {edge - focusMargin, edge - 6, edge - focusMargin, 16 - focusMargin});
    header_ = new QGridLayout(inner);
    header_->setContentsMargins(0, 0, 0, 0);
    header_->setHorizontalSpacing(controlsGap - focusMargin);
    header_->setVerticalSpacing(6);
    header_->setColumnStretch(1, 1);
    auto* title = new Label({Theme::Type::section, Theme::Color::text, true}, tr("Stats"));
    title->setContentsMargins(focusMargin, 0, 0, 0);
    header_->addWidget(title, 0, 0);

    controls_ = new QWidget;
    auto* controls = new QBoxLayout(QBoxLayout::LeftToRight, controls_);
    controls->setContentsMargins(0, 0, 0, 0);
    controls->setSpacing(controlsGap - 2 * focusMargin);
    range_ = new SegmentedControl(tr("Range"), {tr("Today"), tr("Week"), tr("Month")});
    filter_ = new SegmentedControl(tr("Reminders"), {tr("All"), tr("Work"), tr("Private")});
    controls->addWidget(range_);
    controls->addWidget(filter_);
    header_->addWidget(controls_, 0, 2);
    connect(range_, &SegmentedControl::chosen, this,
            [this](int index) { app_.settings.statsRange.set(static_cast<StatsRange>(index)); });
    connect(filter_, &SegmentedControl::chosen, this,
            [this](int index) { app_.settings.statsFilter.set(static_cast<StatsFilter>(index)); });

    menuButton_ = new IconButton("ellipsis", tr("Export and import"));
    connect(menuButton_, &QAbstractButton::clicked, this, &StatsPage::openMenu);
    header_->addWidget(menuButton_, 0, 3);

    message_ = new Label({Theme::Type::body, Theme::Color::secondary});
    message_->setWordWrap(true);
    message_->setMinimumWidth(1);  // else it is as wide as the longest folder's name
    message_->setContentsMargins(focusMargin, 2, focusMargin, 0);
    message_->setTextInteractionFlags(Qt::TextSelectableByMouse);
    message_->hide();
    header_->addWidget(message_, 2, 0, 1, 4);
    return header;
}

QWidget* StatsPage::makeFigures() {
    const Calendar& calendar = app_.platform.calendar;
    auto* figures = new QWidget;
    auto* column = new QVBoxLayout(figures);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    tiles_ = new StatsTiles;
    column->addWidget(tiles_);
    column->addSpacing(cardGap - focusMargin);

    auto* card = new Card;
    auto* inside = new QVBoxLayout(card);
    inside->setContentsMargins(16 - focusMargin, 12, 16 - focusMargin, 8 - focusMargin);
    chart_ = new StatsChart(calendar);
    inside->addWidget(chart_);
    quietRange_ = makeQuietRange();
    inside->addWidget(quietRange_);
    column->addLayout(inset(card));

    habitsGroup_ = new QWidget;
    auto* group = new QVBoxLayout(habitsGroup_);
    group->setContentsMargins(focusMargin, groupGap, focusMargin, 0);
    group->setSpacing(8);
    group->addWidget(new Label({Theme::Type::title, Theme::Color::text, true}, tr("Habits")));
    auto* rows = new Card;
    auto* rowsColumn = new QVBoxLayout(rows);
    rowsColumn->setContentsMargins(0, 0, 0, 0);
    habits_ = new HabitList(calendar, [this](const StatsHabit& habit) { return symbolOf(habit); });
    connect(habits_, &HabitList::walkedTo, this, [this](const QRect& place) {
        const QPoint middle = habits_->mapTo(scroll_->widget(), place.center());
        scroll_->ensureVisible(middle.x(), middle.y(), 0, place.height());
    });
    rowsColumn->addWidget(habits_);
    group->addWidget(rows);
    column->addWidget(habitsGroup_);
    return figures;
}

// As high as the chart that it stands in for.
QWidget* StatsPage::makeQuietRange() {
    auto* state = new QWidget;
    state->setFixedHeight(chart_->sizeHint().height());
    auto* column = new QVBoxLayout(state);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addStretch();
    column->addWidget(new SymbolCircle(48, "leaf", Theme::Color::good), 0, Qt::AlignHCenter);
    column->addSpacing(12);
    quietTitle_ = new Label({Theme::Type::title, Theme::Color::text, true});
    quietText_ = new Label({Theme::Type::body, Theme::Color::secondary});
    for (Label* each : {quietTitle_, quietText_}) {
        each->setAlignment(Qt::AlignHCenter);
        each->setWordWrap(true);
        column->addWidget(each);
        column->addSpacing(4);
    }
    column->addStretch();
    return state;
}

QWidget* StatsPage::firstFocus() const {
    if (!range_->isVisible()) return menuButton_;
    for (QWidget* segment : range_->findChildren<QWidget*>())
        if (segment->focusPolicy() & Qt::TabFocus) return segment;
    return menuButton_;
}

void StatsPage::arrangeHeader() {
    auto* controls = static_cast<QBoxLayout*>(controls_->layout());
    const int room = std::min(width() - 2 * (edge - focusMargin), widestColumn);
    const int beside = range_->sizeHint().width() + filter_->sizeHint().width() + controlsGap;
    const int title = header_->itemAtPosition(0, 0)->sizeHint().width();
    const int menu = menuButton_->sizeHint().width();
    const bool isOneRow = title + beside + menu + 3 * controlsGap <= room;
    controls->setDirection(beside <= room ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom);
    if (isOneRow == (header_->itemAtPosition(0, 2) != nullptr)) return;
    if (isOneRow)
        header_->addWidget(controls_, 0, 2);
    else
        header_->addWidget(controls_, 1, 0, 1, 4, Qt::AlignLeft);
    // The Tab key goes as the eye does.
    QWidgetList stops;
    for (const SegmentedControl* each : {range_, filter_})
        for (QWidget* segment : each->findChildren<QWidget*>())
            stops << segment;
    stops.insert(isOneRow ? stops.size() : 0, menuButton_);
    for (qsizetype i = 1; i < stops.size(); ++i)
        setTabOrder(stops[i - 1], stops[i]);
}

void StatsPage::resizeEvent(QResizeEvent* event) {
    arrangeHeader();
    QWidget::resizeEvent(event);
}

void StatsPage::openMenu() {
    QMenu* menu = transfer_->makeMenu();
    const QPoint corner = menuButton_->mapToGlobal(menuButton_->rect().bottomRight());
    menu->popup(corner - QPoint(menu->sizeHint().width(), 0));
    menu->setActiveAction(menu->actions().constFirst());
}

void StatsPage::tell(const QString& text, HistoryTransfer::Outcome outcome) {
    message_->setColor(outcome == HistoryTransfer::Outcome::done ? Theme::Color::secondary
                                                                 : Theme::Color::missed);
    message_->setText(text);
    message_->show();
    QAccessibleEvent event(message_, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

void StatsPage::showEvent(QShowEvent* event) {
    if (!event->spontaneous()) message_->hide();
    refresh();
    QWidget::showEvent(event);
}

void StatsPage::lookAtClock() {
    const Instant now = app_.scheduler.now().get();
    const Calendar& calendar = app_.platform.calendar;
    if (hourShown_ != std::pair(calendar.day(now).day, calendar.localTime(now).hour))
        refresh_.request();
}

void StatsPage::refresh() {
    if (!history_) {
        history_ = std::make_unique<StatsHistory>(app_.store);
        historyChanged_ = history_->changed.connect([this] { refresh_.request(); });
    }
    const Calendar& calendar = app_.platform.calendar;
    const Instant now = app_.platform.loop.now();
    const StatsRange range = app_.settings.statsRange.get();
    const StatsFilter filter = app_.settings.statsFilter.get();
    hourShown_ = {calendar.day(now).day, calendar.localTime(now).hour};
    range_->setCurrent(static_cast<int>(range));
    filter_->setCurrent(static_cast<int>(filter));
    goal_->refresh();

    const auto records = history_->records();
    const auto focus = history_->focus();
    const bool isEmpty = records.empty() && focus.empty();
    ghost_->setVisible(isEmpty);
    figures_->setVisible(!isEmpty);
    controls_->setVisible(!isEmpty);
    if (isEmpty) return;

    StatsSummary summary = Stats::summary(records, focus, range, filter, now, calendar);
    tiles_->setTiles(StatsSentences::tiles(summary, Stats::streak(records, filter, now, calendar)));
    const bool isQuiet = summary.tally == StatsTally() && summary.focusSeconds == 0;
    chart_->setVisible(!isQuiet);
    quietRange_->setVisible(isQuiet);
    quietTitle_->setText(StatsSentences::emptyTitle(range, filter));
    quietText_->setText(StatsSentences::emptyText(range, filter));
    habits_->setHabits(summary.habits);
    habitsGroup_->setVisible(!summary.habits.empty());
    chart_->setContent(std::move(summary.buckets), range, now);
}

std::string StatsPage::symbolOf(const StatsHabit& habit) const {
    const auto* id = std::get_if<ReminderId>(&habit.id);
    const Reminder* reminder = id ? app_.store.find(*id) : nullptr;
    return reminder ? displaySymbol(*reminder) : suggestedSymbol(habit.title);
}

bool StatsPage::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn && watched != habits_ &&
        isShownFocus(static_cast<QFocusEvent*>(event)->reason()))
        scroll_->ensureWidgetVisible(static_cast<QWidget*>(watched), 0, edge);
    return QWidget::eventFilter(watched, event);
}

}  // namespace tendel

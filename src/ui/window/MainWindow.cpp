#include "ui/window/MainWindow.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <algorithm>

#include "focus/FocusWords.h"
#include "ui/stats/StatsPage.h"
#include "ui/theme/QtText.h"
#include "ui/theme/Theme.h"
#include "ui/window/FocusCountdown.h"
#include "ui/window/FocusPage.h"
#include "ui/window/Question.h"
#include "ui/window/ReminderEditor.h"
#include "ui/window/ReminderListPage.h"
#include "ui/window/Sheet.h"
#include "ui/window/Sidebar.h"
#include "ui/window/StatusLine.h"

namespace tendel {

namespace {

constexpr QSize startSize(900, 640);
constexpr QSize leastSize(720, 480);
constexpr int editorWidth = 460;

}  // namespace

MainWindow::MainWindow(TendelApp& app, const Observable<std::optional<AlertHold>>& hold)
    : app_(app), hold_(hold) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(QStringLiteral("Tendel"));
    setMinimumSize(leastSize);
    resize(startSize);
    sidebar_ = new Sidebar(
        {{SidebarItem::privateReminders, tr("Private Reminders"), "house",
          Theme::Color::privateAccent},
         {SidebarItem::workReminders, tr("Work Reminders"), "briefcase", Theme::Color::workAccent},
         {SidebarItem::focus, tr("Focus"), "target", Theme::Color::focusAccent},
         {SidebarItem::stats, tr("Stats"), "chart.bar", Theme::Color::good}});
    pages_ = new QStackedWidget;
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(sidebar_);
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    column->addWidget(pages_, 1);
    status_ = new StatusLine(this);
    column->addWidget(status_);
    row->addLayout(column, 1);

    addListPage(SidebarItem::privateReminders, ReminderKind::private_);
    addListPage(SidebarItem::workReminders, ReminderKind::work);
    addFocusPage();
    statsPage_ = new StatsPage(app_);
    pages_->addWidget(statsPage_);
    pageOf_.emplace(SidebarItem::stats, statsPage_);
    connect(sidebar_, &Sidebar::chosen, this, &MainWindow::showSection);
    addShortcuts();
    refreshCounts();
    showSection(app_.navigation.takeRequestedItem().value_or(SidebarItem::workReminders));
    refreshStatus();
    subscriptions_.push_back(app_.store.saved.connect([this] { refreshCounts(); }));
    const auto lookAtStatus = [this] { refreshStatus(); };
    subscriptions_.push_back(hold_.observe(lookAtStatus));
    // Another day or zone words the end of a pause otherwise.
    subscriptions_.push_back(app_.scheduler.now().observe(lookAtStatus));
}

void MainWindow::addListPage(SidebarItem item, ReminderKind kind) {
    auto* page = new ReminderListPage(app_, kind);
    connect(page, &ReminderListPage::newRequested, this, &MainWindow::createReminder);
    connect(page, &ReminderListPage::editRequested, this, &MainWindow::editReminder);
    connect(page, &ReminderListPage::deleteRequested, this,
            [this, page](ReminderId id) { askToDelete(*page, id); });
    pages_->addWidget(page);
    pageOf_.emplace(item, page);
}

void MainWindow::addFocusPage() {
    focusPage_ =
        new FocusPage({.timer = app_.focus,
                       .settings = app_.settings,
                       .loop = app_.platform.loop,
                       .calendar = app_.platform.calendar,
                       .reducesMotion = [this] { return app_.alerts.model().reduceMotion; }},
                      app_.sounds);
    pages_->addWidget(focusPage_);
    pageOf_.emplace(SidebarItem::focus, focusPage_);
    focusCountdown_ =
        new FocusCountdown(app_.platform.loop, *sidebar_, FocusCountdown::Precision::minutes,
                           [this] { refreshFocusNote(); });
    const auto follow = [this] {
        focusCountdown_->setSession(*app_.focus.session());
        refreshFocusNote();
    };
    subscriptions_.push_back(app_.focus.session().observe(follow));
    follow();
}

void MainWindow::addShortcuts() {
    const auto add = [this](const QKeySequence& keys, std::function<void()> run) {
        auto* shortcut = new QShortcut(keys, this);
        connect(shortcut, &QShortcut::activated, this, [this, run = std::move(run)] {
            if (!hasSheet()) run();
        });
    };
    add(QKeySequence::New, [this] { createReminder(); });
    add(Qt::CTRL | Qt::Key_1, [this] { showSection(SidebarItem::privateReminders); });
    add(Qt::CTRL | Qt::Key_2, [this] { showSection(SidebarItem::workReminders); });
    add(Qt::CTRL | Qt::Key_3, [this] { showSection(SidebarItem::focus); });
    add(Qt::CTRL | Qt::Key_4, [this] { showSection(SidebarItem::stats); });
    auto* closing = new QShortcut(QKeySequence::Close, this);
    connect(closing, &QShortcut::activated, this, &QWidget::close);
}

void MainWindow::comeForward() {
    if (const auto item = app_.navigation.takeRequestedItem(); item && !hasSheet())
        showSection(*item);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
    if (!focusWidget()) firstFocus()->setFocus(Qt::ActiveWindowFocusReason);
}

void MainWindow::showSection(SidebarItem item) {
    const auto found = pageOf_.find(item);
    if (found == pageOf_.end()) return;
    sidebar_->setCurrent(item);
    pages_->setCurrentWidget(found->second);
}

QWidget* MainWindow::firstFocus() const {
    if (const ReminderListPage* list = listPage()) return list->firstFocus();
    return pages_->currentWidget() == focusPage_ ? focusPage_->firstFocus()
                                                 : statsPage_->firstFocus();
}

ReminderListPage* MainWindow::listPage() const {
    return qobject_cast<ReminderListPage*>(pages_->currentWidget());
}

bool MainWindow::hasSheet() const {
    return (editorSheet_ && editorSheet_->isVisible()) || (question_ && question_->isVisible());
}

void MainWindow::refreshCounts() {
    for (const auto& [item, page] : pageOf_) {
        const auto* list = qobject_cast<ReminderListPage*>(page);
        if (!list) continue;
        const auto count = static_cast<int>(
            std::ranges::count(app_.store.reminders(), list->kind(), &Reminder::kind));
        sidebar_->setNote(item, count > 0 ? QString::number(count) : QString(),
                          count == 1 ? tr("1 reminder") : tr("%1 reminders").arg(count));
    }
}

// Seconds are shown but not spoken.
void MainWindow::refreshFocusNote() {
    const auto& session = *app_.focus.session();
    if (!session) return sidebar_->setNote(SidebarItem::focus, {}, {});
    const int seconds = focusCountdown_->seconds();
    QString note = toQString(phaseText(*session));
    QString spoken = note + tr(" · round %1").arg(session->round);
    if (session->endsAt) {
        note = toQString(remainingText(seconds));
        spoken += seconds > 60 ? tr(" · %1 left").arg(note) : tr(" · in its last minute");
    }
    spoken += tr(" · then %1").arg(toQString(nextText(*session)));
    sidebar_->setNote(SidebarItem::focus, note, spoken);
}

void MainWindow::refreshStatus() {
    const auto& hold = hold_.get();
    if (!hold) return status_->setStatus({}, {}, {});
    const Instant now = app_.platform.loop.now();
    const auto words = [&](const AlertHold& of) {
        return toQString(of.text(app_.platform.calendar, now));
    };
    // The last minute counts its seconds, which nobody wants to hear.
    AlertHold spoken = *hold;
    const auto& session = *app_.focus.session();
    if (session && !spoken.focusStatus.empty() && session->remaining(now) <= 60)
        spoken.focusStatus = phaseText(*session) + " · in its last minute";
    status_->setStatus(symbolOf(hold->reason), words(*hold), words(spoken));
}

void MainWindow::createReminder() {
    const ReminderKind kind = listPage() ? listPage()->kind() : ReminderKind::work;
    openEditor(ReminderEditor::newReminder(kind, app_.settings.workingHours.get()));
}

void MainWindow::editReminder(ReminderId id) {
    if (const Reminder* reminder = app_.store.find(id)) openEditor(*reminder);
}

void MainWindow::openEditor(const Reminder& reminder) {
    if (hasSheet()) return;
    auto* sheet = new Sheet(this, editorWidth);
    auto* column = new QVBoxLayout(&sheet->panel());
    column->setContentsMargins(0, 0, 0, 0);
    editor_ = new ReminderEditor(app_, reminder);
    column->addWidget(editor_);
    editorSheet_ = sheet;
    connect(editor_, &ReminderEditor::saved, this, [this](ReminderId id) {
        const Reminder* made = app_.store.find(id);
        leaveEditor();
        if (!made) return;
        showSection(made->kind() == ReminderKind::work ? SidebarItem::workReminders
                                                       : SidebarItem::privateReminders);
        listPage()->focusReminder(id);
    });
    connect(editor_, &ReminderEditor::cancelled, this, &MainWindow::leaveEditor);
    connect(sheet, &Sheet::returnPressed, editor_, &ReminderEditor::save);
    connect(sheet, &Sheet::escapePressed, this, [this] {
        if (editor_->hasChanges())
            askAboutChanges([] {});
        else
            leaveEditor();
    });
    sheet->open(editor_->firstField());
}

void MainWindow::leaveEditor() {
    editor_ = nullptr;
    if (editorSheet_) editorSheet_->closeSheet();
    editorSheet_ = nullptr;
}

// `whenLeft` runs once the editor is gone, saved or not.
void MainWindow::askAboutChanges(std::function<void()> whenLeft) {
    if (question_ && question_->isVisible()) return;
    const QString title = quoted(toQString(editor_->draft().displayTitle()));
    question_ = &ask(this, {.title = tr("Save the changes to %1?").arg(title),
                            .text = tr("They are lost otherwise."),
                            .answers = {{tr("Keep Editing"), Button::Role::normal, [] {}},
                                        {tr("Discard"), Button::Role::destructive,
                                         [this, whenLeft] {
                                             leaveEditor();
                                             whenLeft();
                                         }},
                                        {tr("Save"), Button::Role::primary, [this, whenLeft] {
                                             if (editor_->save()) whenLeft();
                                         }}}});
}

void MainWindow::askToDelete(ReminderListPage& page, ReminderId id) {
    const Reminder* reminder = app_.store.find(id);
    if (!reminder || hasSheet()) return;
    question_ = &ask(
        this,
        {.title = tr("Delete %1?").arg(quoted(toQString(reminder->displayTitle()))),
         .text = tr("Its history stays in Stats."),
         .answers = {{tr("Cancel"), Button::Role::normal, [] {}},
                     {tr("Delete"), Button::Role::destructive, [&page, id] { page.remove(id); }}}});
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (!editor_ || !editor_->hasChanges()) return event->accept();
    event->ignore();
    comeForward();  // the window may be behind others when the program is asked to quit
    askAboutChanges([this] { close(); });
}

void MainWindow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().color(Theme::Color::window));
}

}  // namespace tendel

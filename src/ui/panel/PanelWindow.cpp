#include "ui/panel/PanelWindow.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QPainter>
#include <QScreen>
#include <QVBoxLayout>
#include <QWindow>

#include <algorithm>
#include <cmath>

#include "ui/panel/Beads.h"
#include "ui/panel/FocusStrip.h"
#include "ui/panel/NextReminderView.h"
#include "ui/panel/PanelCommands.h"
#include "ui/panel/PanelMenuView.h"
#include "ui/panel/PanelPlacement.h"
#include "ui/panel/X11Activation.h"
#include "ui/theme/Accessible.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

constexpr int panelWidth = 320;
constexpr int edge = 8;

// The pixels that a rectangle with round corners touches, wholly or in part: without a compositor
// nothing but its shape makes a window's corners round.
QRegion touchedByRounded(QSize size, int radius) {
    QRegion region(0, radius, size.width(), size.height() - 2 * radius);
    for (int row = 0; row < radius; ++row) {
        const double up = radius - (row + 1);
        const int in = static_cast<int>(radius - std::sqrt(radius * radius - up * up));
        const QRect line(in, row, size.width() - 2 * in, 1);
        region += line;
        region += line.translated(0, size.height() - 1 - 2 * row);
    }
    return region;
}

QPoint centre(const QWidget& of, const QWidget& in) {
    return of.mapTo(&in, of.rect().center());
}

}  // namespace

PanelWindow::PanelWindow(TendelApp& app)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::NoDropShadowWindowHint),
      app_(app),
      card_(new NextReminderView),
      focus_(new FocusStrip(app)),
      menu_(new PanelMenuView),
      streak_(app.store, app.platform.loop, app.platform.calendar) {
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground);
    setWindowTitle(QStringLiteral("Tendel"));
    setAccessibleName(tr("Tendel panel"));
    // The keyboard begins on the panel itself, so that the first key leads to the first row.
    setFocusPolicy(Qt::StrongFocus);
    setFixedWidth(panelWidth);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(edge, edge, edge, edge);
    column->setSpacing(0);
    column->addWidget(card_);
    column->addSpacing(edge);
    column->addWidget(focus_);
    column->addWidget(menu_);

    connect(card_, &NextReminderView::resumePressed, this, [this] { app_.scheduler.resume(); });
    connect(menu_, &PanelMenuView::chosen, this, &PanelWindow::choose);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
    const auto look = [this] { invalidate(); };
    const ReminderScheduler& scheduler = app_.scheduler;
    const auto lookBack = [this] {
        invalidate();
        if (isPainted_) countStreak();
    };
    subscriptions_.push_back(app_.store.saved.connect(lookBack));
    subscriptions_.push_back(scheduler.now().observe(look));
    subscriptions_.push_back(scheduler.upcoming().observe(look));
    subscriptions_.push_back(scheduler.kept().observe(look));
    subscriptions_.push_back(scheduler.pausedUntil().observe([this] {
        invalidate();
        refreshMenu();
    }));
    subscriptions_.push_back(app_.settings.workingHours.observe(look));
    subscriptions_.push_back(app_.alerts.model().changed.connect([look](const auto&) { look(); }));
    subscriptions_.push_back(app_.platform.loop.timeZoneChanged.connect(lookBack));
    refreshCard();
    refreshMenu();
}

void PanelWindow::openAt(QPoint icon) {
    icon_ = icon;
    place();
    setFocus(Qt::OtherFocusReason);
    show();
    activateForUser(*windowHandle());
}

void PanelWindow::place() {
    const QScreen* screen = QGuiApplication::screenAt(icon_);
    if (!screen) screen = QGuiApplication::primaryScreen();
    const QSize size(panelWidth, layout()->sizeHint().height());
    setGeometry(panelFrame(icon_, size, screen->availableGeometry()));
}

// Once for many changes.
void PanelWindow::invalidate() {
    if (std::exchange(isRefreshQueued_, true)) return;
    QMetaObject::invokeMethod(
        this,
        [this] {
            isRefreshQueued_ = false;
            refreshCard();
        },
        Qt::QueuedConnection);
}

void PanelWindow::refreshCard() {
    const ReminderScheduler& scheduler = app_.scheduler;
    const Calendar& calendar = app_.platform.calendar;
    const Instant now = app_.platform.loop.now();
    const auto today = DayTimeline::of(app_.store, scheduler, app_.settings.workingHours.get(),
                                       calendar, now, app_.alerts.queue().shownReminders());
    card_->setCard(NextReminderCard::of({.now = now,
                                         .upcoming = *scheduler.upcoming(),
                                         .pauseStartedAt = scheduler.pauseStartedAt(),
                                         .pausedUntil = *scheduler.pausedUntil(),
                                         .beads = beadsOf(today),
                                         .streakDays = streakDays_},
                                        calendar));
}

void PanelWindow::refreshMenu() {
    const bool isPaused = app_.scheduler.pausedUntil().get().has_value();
    menu_->setEntries(availableMenu(isPaused ? ReminderState::paused : ReminderState::running));
}

void PanelWindow::countStreak() {
    streak_.start([this](std::int64_t days) {
        streakDays_ = days;
        refreshCard();
    });
}

void PanelWindow::choose(const PanelMenuEntry::Action& action) {
    // A pause and its end show here what they did; everything else leads away.
    const auto* command = std::get_if<PanelCommand>(&action);
    if (command && *command != PanelCommand::resumeReminders) close();
    perform(action, app_);
}

bool PanelWindow::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::WindowDeactivate:
            if (isVisible()) {
                onLeft();
                close();
            }
            break;
        case QEvent::Close:
            onLeft = [] {};  // what comes now is only its own going
            break;
        case QEvent::LayoutRequest: {
            const bool isHandled = QWidget::event(event);
            if (isVisible()) place();
            return isHandled;
        }
        default:
            break;
    }
    return QWidget::event(event);
}

std::vector<QWidget*> PanelWindow::stops() const {
    std::vector<QWidget*> all;
    for (QWidget* each : findChildren<QWidget*>())
        if (each->isVisible() && each->isEnabled() && each->focusPolicy() & Qt::TabFocus)
            all.push_back(each);
    std::ranges::sort(all, [this](const QWidget* a, const QWidget* b) {
        const QPoint p = centre(*a, *this);
        const QPoint q = centre(*b, *this);
        return std::pair(p.y(), p.x()) < std::pair(q.y(), q.x());
    });
    return all;
}

// Up and down go from row to row, left and right inside one; at the ends they go round.
void PanelWindow::walk(int key) {
    std::vector<QWidget*> all = stops();
    if (all.empty()) return;
    const bool isBack = key == Qt::Key_Up || key == Qt::Key_Left;
    const bool isUpright = key == Qt::Key_Up || key == Qt::Key_Down;
    const auto height = [this](const QWidget* of) { return centre(*of, *this).y(); };
    const auto here = std::ranges::find(all, focusWidget());
    if (here != all.end() && !isUpright)
        std::erase_if(all, [&, y = height(*here)](QWidget* each) { return height(each) != y; });
    else if (here != all.end())
        std::erase_if(all, [&, at = *here, y = height(*here)](QWidget* each) {
            return each != at && height(each) == y;
        });
    // Of several in one row the first is come to.
    const auto at = std::ranges::find(all, focusWidget());
    const auto count = std::ssize(all);
    std::ptrdiff_t next = isBack ? count - 1 : 0;
    if (at != all.end()) next = (at - all.begin() + (isBack ? count - 1 : 1)) % count;
    if (isUpright)
        while (next > 0 && all[std::size_t(next)] != focusWidget() &&
               height(all[std::size_t(next) - 1]) == height(all[std::size_t(next)]))
            --next;
    all[std::size_t(next)]->setFocus(isBack ? Qt::BacktabFocusReason : Qt::TabFocusReason);
}

void PanelWindow::keyPressEvent(QKeyEvent* event) {
    switch (event->key()) {
        case Qt::Key_Escape:
            close();
            return;
        case Qt::Key_Up:
        case Qt::Key_Down:
        case Qt::Key_Left:
        case Qt::Key_Right:
            return walk(event->key());
        case Qt::Key_Home:
        case Qt::Key_End:
            if (const auto all = stops(); !all.empty())
                (event->key() == Qt::Key_Home ? all.front() : all.back())
                    ->setFocus(Qt::TabFocusReason);
            return;
        default:
            QWidget::keyPressEvent(event);
    }
}

void PanelWindow::resizeEvent(QResizeEvent*) {
    setMask(touchedByRounded(size(), Theme::panelRadius));
}

void PanelWindow::paintEvent(QPaintEvent*) {
    // History is read once the panel is there to be seen.
    if (!std::exchange(isPainted_, true)) countStreak();
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(Theme::Color::window));
    painter.drawRoundedRect(rect(), Theme::panelRadius, Theme::panelRadius);
    // Against a wallpaper of the panel's own colour the surfaces' hairline would not show.
    const QColor line = blended(theme.color(Theme::Color::text), theme.color(Theme::Color::window),
                                theme.isDark() ? 0.28 : 0.2);
    drawHairline(painter, rect(), Theme::panelRadius, line);
}

}  // namespace tendel

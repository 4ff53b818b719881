#include "ui/tray/TrayIcon.h"

#include <QApplication>
#include <QPainter>
#include <QPainterPath>

#include "reminders/PauseOption.h"

namespace tendel {

namespace {

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

// The alert hanging from the edge of the screen, with an eye in it, or with the pause sign.
QPixmap drawn(int size, bool isPaused) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.scale(size / 24.0, size / 24.0);

    QPainterPath shape(QPointF(1, 3));
    shape.lineTo(23, 3);
    shape.lineTo(23, 5);
    shape.cubicTo(19, 5, 18.5, 6.5, 18.5, 10);
    shape.lineTo(18.5, 14.5);
    shape.arcTo(QRectF(5.5, 8, 13, 13), 0, -180);
    shape.lineTo(5.5, 10);
    shape.cubicTo(5.5, 6.5, 5, 5, 1, 5);
    shape.closeSubpath();
    QPainterPath sign;
    if (isPaused) {
        sign.addRoundedRect(QRectF(9, 9, 2, 8), 1, 1);
        sign.addRoundedRect(QRectF(13, 9, 2, 8), 1, 1);
    } else {
        sign.addEllipse(QPointF(12, 14), 2.75, 2.75);
    }
    // Panels are light or dark and do not tell: a grey that stands out by 3 to 1 from both.
    painter.fillPath(shape.subtracted(sign), QColor(0x86, 0x86, 0x8B));
    return pixmap;
}

QIcon drawnIcon(bool isPaused) {
    QIcon icon;
    for (const int size : {16, 22, 24, 32, 48})
        icon.addPixmap(drawn(size, isPaused));
    return icon;
}

}  // namespace

TrayIcon::TrayIcon(TendelApp& app, const Observable<std::optional<AlertHold>>& hold)
    : app_(app), hold_(hold) {
    host_.find([this] { appear(); });
}

void TrayIcon::appear() {
    buildMenu();
    icon_ = std::make_unique<QSystemTrayIcon>();
    icon_->setContextMenu(&menu_);
    QObject::connect(icon_.get(), &QSystemTrayIcon::activated, &menu_,
                     [this](QSystemTrayIcon::ActivationReason reason) {
                         if (reason == QSystemTrayIcon::Trigger) app_.navigation.requestWindow();
                     });
    refresh();
    icon_->show();
    const auto look = [this] { refresh(); };
    subscriptions_.push_back(app_.scheduler.upcoming().observe(look));
    subscriptions_.push_back(app_.scheduler.pausedUntil().observe(look));
    subscriptions_.push_back(hold_.observe(look));
    // A new day makes a weekday of a time or the reverse, another zone another time.
    subscriptions_.push_back(app_.scheduler.now().observe(look));
}

void TrayIcon::buildMenu() {
    const auto add = [](QMenu& menu, const QString& label, auto act) {
        QAction* action = menu.addAction(label);
        QObject::connect(action, &QAction::triggered, &menu, act);
        return action;
    };
    add(menu_, QStringLiteral("Open Tendel"), [this] { app_.navigation.requestWindow(); });
    pauseMenu_ = menu_.addMenu(QStringLiteral("Pause Reminders"));
    for (const PauseOption option : pauseOptions)
        add(*pauseMenu_, text(title(option)), [this, option] {
            app_.scheduler.pause(
                pauseEnd(option, app_.platform.loop.now(), app_.platform.calendar));
        });
    resume_ = add(menu_, text(resumeTitle), [this] { app_.scheduler.resume(); });
    menu_.addSeparator();
    add(menu_, QStringLiteral("Quit Tendel"), [] { QApplication::quit(); });
}

// Every change is a message to the tray, so only what is new is set.
void TrayIcon::refresh() {
    const bool isPaused = this->isPaused();
    if (showsPaused_ != isPaused) {
        showsPaused_ = isPaused;
        icon_->setIcon(drawnIcon(isPaused));
        pauseMenu_->menuAction()->setVisible(!isPaused);
        resume_->setVisible(isPaused);
    }
    const QString tip = toolTip();
    if (icon_->toolTip() != tip) icon_->setToolTip(tip);
}

QString TrayIcon::toolTip() const {
    const Calendar& calendar = app_.platform.calendar;
    const Instant now = app_.platform.loop.now();
    if (const auto& hold = hold_.get()) return text(hold->text(calendar, now));
    if (const auto& upcoming = app_.scheduler.upcoming().get())
        return QStringLiteral("Next: %1, %2")
            .arg(text(upcoming->title()), text(whenOnClock(upcoming->fireDate, now, calendar)));
    return QStringLiteral("Tendel");
}

}  // namespace tendel

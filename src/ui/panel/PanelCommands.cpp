#include "ui/panel/PanelCommands.h"

#include <QApplication>
#include <QDesktopServices>
#include <QSysInfo>
#include <QUrlQuery>

#include <utility>
#include <variant>

#include "ui/window/NoticeWindow.h"

namespace tendel {

namespace {

const QString address = QStringLiteral("support@tendel.app");
const QString version = QStringLiteral(TENDEL_VERSION);

QString systemText() {
    return QStringLiteral("%1, %2, Qt %3")
        .arg(QSysInfo::prettyProductName(), QGuiApplication::platformName(),
             QString::fromLatin1(qVersion()));
}

void notify(const char* symbol, const QString& title, const QString& text) {
    // Deletes itself when it is answered.
    auto* notice = new NoticeWindow({.symbol = symbol,
                                     .color = Theme::Color::workAccent,
                                     .title = title,
                                     .text = text,
                                     .answers = {{NoticeWindow::tr("OK")}}});
    notice->present();
}

void sendFeedback() {
    if (QDesktopServices::openUrl(feedbackMessage())) return;
    notify("envelope", NoticeWindow::tr("Feedback"),
           NoticeWindow::tr("No mail program answers here. Write to %1.").arg(address));
}

void showAbout() {
    notify(
        "bell", QStringLiteral("Tendel %1").arg(version),
        NoticeWindow::tr("Reminds you to rest your eyes, to stretch and to drink while you work, "
                         "without taking the keyboard.\n\n%1")
            .arg(systemText()));
}

void run(PanelCommand command, TendelApp& app) {
    switch (command) {
        case PanelCommand::resumeReminders:
            return app.scheduler.resume();
        case PanelCommand::openTendel:
            return app.navigation.requestWindow();
        case PanelCommand::openStats:
            return app.navigation.request(SidebarItem::stats);
        case PanelCommand::settings:
            return;
        case PanelCommand::feedback:
            return sendFeedback();
        case PanelCommand::about:
            return showAbout();
        case PanelCommand::quit:
            return QApplication::quit();
    }
}

bool isAvailable(PanelCommand command) {
    return command != PanelCommand::settings;
}

}  // namespace

std::vector<PanelMenuEntry> availableMenu(ReminderState reminders) {
    std::vector<PanelMenuEntry> menu;
    bool startsGroup = false;  // a row that is left out leaves its line to the next
    for (PanelMenuEntry entry : panelMenu(reminders)) {
        startsGroup |= entry.startsGroup;
        const auto* command = std::get_if<PanelCommand>(&entry.action);
        if (command && !isAvailable(*command)) continue;
        entry.startsGroup = std::exchange(startsGroup, false);
        menu.push_back(std::move(entry));
    }
    return menu;
}

void perform(const PanelMenuEntry::Action& action, TendelApp& app) {
    if (const auto* option = std::get_if<PauseOption>(&action))
        app.scheduler.pause(pauseEnd(*option, app.platform.loop.now(), app.platform.calendar));
    if (const auto* command = std::get_if<PanelCommand>(&action)) run(*command, app);
}

QUrl feedbackMessage() {
    QUrl url;
    url.setScheme(QStringLiteral("mailto"));
    url.setPath(address);
    QUrlQuery query;
    query.addQueryItem(QStringLiteral("subject"), QStringLiteral("Tendel %1").arg(version));
    query.addQueryItem(QStringLiteral("body"),
                       QStringLiteral("\n\n--\nTendel %1, %2").arg(version, systemText()));
    url.setQuery(query);
    return url;
}

}  // namespace tendel

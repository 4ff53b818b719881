#include "ui/window/NoticeWindow.h"

#include <QApplication>
#include <QCursor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QOperatingSystemVersion>
#include <QPainter>
#include <QPointer>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

#include <cstdlib>

#include "storage/Persistence.h"
#include "ui/theme/Button.h"
#include "ui/theme/Label.h"
#include "ui/theme/QtText.h"
#include "ui/theme/SymbolCircle.h"

namespace tendel {

namespace {

constexpr int noticeWidth = 440;
constexpr int edge = 24;

QString showTitle() {
    const bool isMac = QOperatingSystemVersion::currentType() == QOperatingSystemVersion::MacOS;
    return isMac ? NoticeWindow::tr("Show in Finder") : NoticeWindow::tr("Show in File Manager");
}

}  // namespace

NoticeWindow::NoticeWindow(const Notice& notice)
    : QWidget(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint | Qt::CustomizeWindowHint |
                           Qt::WindowTitleHint | Qt::WindowCloseButtonHint) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::ApplicationModal);
    setWindowTitle(QStringLiteral("Tendel"));
    setAccessibleName(notice.title);

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(edge, edge, edge - focusMargin, edge - focusMargin);
    row->setSpacing(16);
    row->addWidget(new SymbolCircle(40, notice.symbol, notice.color), 0, Qt::AlignTop);
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    auto* title = new Label({Theme::Type::title, Theme::Color::text, true}, notice.title);
    auto* text = new Label({Theme::Type::body, Theme::Color::secondary}, notice.text);
    for (Label* label : {title, text}) {
        label->setWordWrap(true);
        label->setContentsMargins(0, 0, focusMargin, 0);
        label->setFixedWidth(noticeWidth - 2 * edge - 40 - 16 + focusMargin);
        column->addWidget(label);
        column->addSpacing(label == title ? 6 : 17);
    }
    text->setTextInteractionFlags(Qt::TextSelectableByMouse);  // to be passed on to who helps
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    buttons->addStretch();
    for (const Answer& answer : notice.answers) {
        const bool isLast = &answer == &notice.answers.back();
        auto* button =
            new Button(isLast ? Button::Role::primary : Button::Role::normal, answer.text);
        connect(button, &QAbstractButton::clicked, this, [this, run = answer.run] {
            run();
            close();
        });
        buttons->addWidget(button, 0, isLast ? Qt::Alignment() : Qt::AlignVCenter);
        if (isLast) button->setFocus(Qt::OtherFocusReason);
    }
    column->addLayout(buttons);
    row->addLayout(column);
}

void NoticeWindow::present() {
    const QScreen* screen = QGuiApplication::screenAt(QCursor::pos());
    if (!screen) screen = QGuiApplication::primaryScreen();
    adjustSize();
    setFixedSize(size());
    if (screen) {
        QRect frame(QPoint(), size());
        frame.moveCenter(screen->availableGeometry().center());
        move(frame.topLeft());
    }
    show();
    raise();
    activateWindow();
}

void NoticeWindow::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) close();
}

void NoticeWindow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().color(Theme::Color::window));
}

NoticeWindow* makeResetNotice(const std::filesystem::path& folder) {
    const ResetNotice notice = resetNotice(folder);
    return new NoticeWindow({.symbol = "exclamationmark.triangle",
                             .color = Theme::Color::snoozed,
                             .title = toQString(notice.title),
                             .text = toQString(notice.text),
                             .answers = {{showTitle(), [folder] { showInFileManager(folder); }},
                                         {NoticeWindow::tr("OK")}}});
}

int showStartFailure(const std::string& reason) {
    QPointer<NoticeWindow> window =
        new NoticeWindow({.symbol = "exclamationmark.triangle",
                          .color = Theme::Color::missed,
                          .title = NoticeWindow::tr("Tendel can't start"),
                          .text = toQString(reason),
                          .answers = {{NoticeWindow::tr("Quit")}}});
    QObject::connect(window, &QObject::destroyed, qApp, [] { QApplication::exit(); });
    window->present();
    QApplication::exec();
    delete window;  // still there when the session ends before it was read
    return EXIT_FAILURE;
}

void showInFileManager(const std::filesystem::path& folder) {
    const QUrl url = QUrl::fromLocalFile(QString::fromStdString(folder.string()));
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("/org/freedesktop/FileManager1"),
                                               QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("ShowItems"));
    call << QStringList{url.toString()} << QString();
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, url] {
        // Not every desktop has a file manager on the bus.
        if (QDBusPendingReply<>(*watcher).isError()) QDesktopServices::openUrl(url);
        watcher->deleteLater();
    });
}

}  // namespace tendel

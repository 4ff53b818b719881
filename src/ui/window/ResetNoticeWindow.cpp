#include "ui/window/ResetNoticeWindow.h"

#include <QCursor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QOperatingSystemVersion>
#include <QPainter>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>

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
    return isMac ? ResetNoticeWindow::tr("Show in Finder")
                 : ResetNoticeWindow::tr("Show in File Manager");
}

}  // namespace

ResetNoticeWindow::ResetNoticeWindow(std::filesystem::path folder)
    : QWidget(nullptr, Qt::Dialog | Qt::WindowStaysOnTopHint | Qt::CustomizeWindowHint |
                           Qt::WindowTitleHint | Qt::WindowCloseButtonHint),
      folder_(std::move(folder)) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowModality(Qt::ApplicationModal);
    const ResetNotice notice = resetNotice(folder_);
    setWindowTitle(QStringLiteral("Tendel"));
    setAccessibleName(toQString(notice.title));

    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(edge, edge, edge - focusMargin, edge - focusMargin);
    row->setSpacing(16);
    row->addWidget(new SymbolCircle(40, "exclamationmark.triangle", Theme::Color::snoozed), 0,
                   Qt::AlignTop);
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    auto* title =
        new Label({Theme::Type::title, Theme::Color::text, true}, toQString(notice.title));
    auto* text = new Label({Theme::Type::body, Theme::Color::secondary}, toQString(notice.text));
    for (Label* label : {title, text}) {
        label->setWordWrap(true);
        label->setContentsMargins(0, 0, focusMargin, 0);
        label->setFixedWidth(noticeWidth - 2 * edge - 40 - 16 + focusMargin);
        column->addWidget(label);
        column->addSpacing(label == title ? 6 : 17);
    }
    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(2);
    buttons->addStretch();
    auto* show = new Button(Button::Role::normal, showTitle());
    auto* ok = new Button(Button::Role::primary, tr("OK"));
    connect(show, &QAbstractButton::clicked, this, &ResetNoticeWindow::showFolder);
    connect(ok, &QAbstractButton::clicked, this, &QWidget::close);
    buttons->addWidget(show, 0, Qt::AlignVCenter);
    buttons->addWidget(ok);
    column->addLayout(buttons);
    row->addLayout(column);
    ok->setFocus(Qt::OtherFocusReason);
}

void ResetNoticeWindow::present() {
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

void ResetNoticeWindow::showFolder() {
    showInFileManager(folder_);
    close();
}

void ResetNoticeWindow::keyPressEvent(QKeyEvent* event) {
    const int key = event->key();
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) close();
}

void ResetNoticeWindow::paintEvent(QPaintEvent*) {
    QPainter(this).fillRect(rect(), Theme::instance().color(Theme::Color::window));
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

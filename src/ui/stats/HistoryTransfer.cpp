#include "ui/stats/HistoryTransfer.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QStandardPaths>

#include <chrono>
#include <filesystem>

#include "ui/stats/StatsSentences.h"
#include "ui/theme/Menu.h"
#include "ui/theme/QtText.h"

namespace tendel {

namespace {

QString suffixOf(ArchiveFormat format) {
    return format == ArchiveFormat::csv ? QStringLiteral("csv") : QStringLiteral("json");
}

std::filesystem::path pathOf(const QString& file) {
    return QFile::encodeName(file).toStdString();
}

// As a person writes it: without the folder that is theirs anyway.
QString shown(const QString& file) {
    const QString home = QDir::homePath() + u'/';
    return file.startsWith(home) ? QStringLiteral("~/") + file.mid(home.size()) : file;
}

// The pointer says that the program is at it.
struct BusyPointer {
    BusyPointer() { QGuiApplication::setOverrideCursor(Qt::BusyCursor); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    ~BusyPointer() { QGuiApplication::restoreOverrideCursor(); }
};

}  // namespace

HistoryTransfer::HistoryTransfer(Store& store, const EventLoop& loop, const Calendar& calendar,
                                 QWidget* window)
    : QObject(window), store_(store), loop_(loop), calendar_(calendar), window_(window) {}

QMenu* HistoryTransfer::makeMenu() {
    auto* menu = new Menu(window_);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    connect(menu->addAction(tr("Export as CSV…")), &QAction::triggered, this,
            [this] { askWhereTo(ArchiveFormat::csv); });
    connect(menu->addAction(tr("Export as JSON…")), &QAction::triggered, this,
            [this] { askWhereTo(ArchiveFormat::json); });
    menu->addSeparator();
    connect(menu->addAction(tr("Import…")), &QAction::triggered, this,
            &HistoryTransfer::askWhereFrom);
    return menu;
}

QFileDialog* HistoryTransfer::makeDialog(const QString& title) {
    if (dialog_) dialog_->deleteLater();
    dialog_ = new QFileDialog(window_, title,
                              QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation));
    dialog_->setAttribute(Qt::WA_DeleteOnClose);
    return dialog_;
}

void HistoryTransfer::askWhereTo(ArchiveFormat format) {
    const QString suffix = suffixOf(format);
    QFileDialog* dialog = makeDialog(tr("Export Reminders and History"));
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setDefaultSuffix(suffix);
    dialog->setNameFilter(tr("%1 files (*.%2)").arg(suffix.toUpper(), suffix));
    const QDate today = QDate(1970, 1, 1).addDays(static_cast<int>(calendar_.day(loop_.now()).day));
    dialog->selectFile(QStringLiteral("Tendel %1.%2").arg(today.toString(Qt::ISODate), suffix));
    connect(dialog, &QFileDialog::fileSelected, this,
            [this, format](const QString& file) { exportTo(file, format); });
    dialog->open();
}

void HistoryTransfer::askWhereFrom() {
    QFileDialog* dialog = makeDialog(tr("Import Reminders and History"));
    dialog->setAcceptMode(QFileDialog::AcceptOpen);
    dialog->setFileMode(QFileDialog::ExistingFile);
    dialog->setNameFilters({tr("CSV and JSON files (*.csv *.json)"), tr("All files (*)")});
    connect(dialog, &QFileDialog::fileSelected, this, &HistoryTransfer::importFrom);
    dialog->open();
}

void HistoryTransfer::exportTo(const QString& file, ArchiveFormat format) {
    const auto result = [&] {
        const BusyPointer busy;
        return exportArchive(store_, pathOf(file), format);
    }();
    if (result)
        Q_EMIT told(tr("Exported to %1").arg(shown(file)), Outcome::done);
    else
        Q_EMIT told(toQString(result.error()), Outcome::failed);
}

void HistoryTransfer::importFrom(const QString& file) {
    const auto result = [&] {
        const BusyPointer busy;
        return importArchive(store_, pathOf(file));
    }();
    if (result)
        Q_EMIT told(StatsSentences::imported(result.value(), QFileInfo(file).fileName()),
                    Outcome::done);
    else
        Q_EMIT told(toQString(result.error()), Outcome::failed);
}

}  // namespace tendel

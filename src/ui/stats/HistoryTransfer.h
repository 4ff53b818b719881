#pragma once

#include <QObject>
#include <QPointer>

#include "base/Calendar.h"
#include "base/EventLoop.h"
#include "storage/Archive.h"

class QFileDialog;
class QMenu;
class QWidget;

namespace tendel {

// The menu by which reminders and their history are written to a file of the user's choice and read
// from one again. Says what came of it; nothing waits meanwhile but for the file itself.
class HistoryTransfer : public QObject {
    Q_OBJECT
public:
    enum class Outcome { done, failed };

    // The dialogs belong to `window`.
    HistoryTransfer(Store& store, const EventLoop& loop, const Calendar& calendar, QWidget* window);

    // Made anew for each opening, gone with it.
    QMenu* makeMenu();

Q_SIGNALS:
    void told(const QString& text, HistoryTransfer::Outcome outcome);

private:
    void askWhereTo(ArchiveFormat format);
    void askWhereFrom();
    void exportTo(const QString& file, ArchiveFormat format);
    void importFrom(const QString& file);
    // Puts a dialog up in place of one that is open.
    QFileDialog* makeDialog(const QString& title);

    Store& store_;
    const EventLoop& loop_;
    const Calendar& calendar_;
    QWidget* window_;
    QPointer<QFileDialog> dialog_;
};

}  // namespace tendel

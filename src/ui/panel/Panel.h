#pragma once

#include <QPoint>
#include <QPointer>

#include <optional>

#include "app/TendelApp.h"

namespace tendel {

class PanelWindow;

// Opens the panel under the tray icon: it is made when it is opened and deleted when it is closed,
// so that it costs nothing meanwhile. Main thread only; the app must outlive it.
class Panel {
public:
    explicit Panel(TendelApp& app) : app_(app) {}
    ~Panel();

    // (0, 0) is what trays say that do not know where their icon is, and stands for the pointer.
    void openAt(QPoint icon);
    // The same, but the icon of an open panel closes it.
    void toggleAt(QPoint icon);
    void close();
    bool isOpen() const;

private:
    TendelApp& app_;
    QPointer<PanelWindow> window_;
    QPoint icon_;                             // of the last opening
    std::optional<MonotonicInstant> leftAt_;  // when the user turned from it to something else
};

}  // namespace tendel

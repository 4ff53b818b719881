#pragma once

#include <QWidget>

#include <functional>

namespace tendel {

// Has a widget look again at what it shows: once for all the changes of one turn of the event loop,
// and only while it is visible; it looks by itself when it is shown. The widget must outlive it.
class Refresh {
public:
    Refresh(QWidget& of, std::function<void()> look) : of_(of), look_(std::move(look)) {}

    void request() {
        if (isDue_ || !of_.isVisible()) return;
        isDue_ = true;
        QMetaObject::invokeMethod(
            &of_,
            [this] {
                isDue_ = false;
                if (of_.isVisible()) look_();
            },
            Qt::QueuedConnection);
    }

private:
    QWidget& of_;
    std::function<void()> look_;
    bool isDue_ = false;
};

}  // namespace tendel

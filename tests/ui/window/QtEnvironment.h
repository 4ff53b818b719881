#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QTest>

#include <string_view>

#include "WindowFixture.h"
#include "ui/theme/QtText.h"
#include "ui/window/MainWindow.h"

namespace tendel::test {

// The visible control of that accessible name or text below `root`; null when there is none.
template <class Widget = QWidget>
Widget* control(const QWidget& root, std::string_view name) {
    for (Widget* each : root.findChildren<Widget*>()) {
        const auto* button = qobject_cast<QAbstractButton*>(each);
        const bool hasName = each->accessibleName() == toQString(name) ||
                             (button && button->text() == toQString(name));
        if (hasName && each->isVisible()) return each;
    }
    return nullptr;
}

// Types into whatever has the keyboard.
inline void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QWidget* focus = QApplication::focusWidget();
    QTest::keyClick(focus ? focus : QApplication::activeWindow(), key, modifiers);
    QApplication::processEvents();
}
inline void type(const char* text) {
    QTest::keyClicks(QApplication::focusWidget(), text);
    QApplication::processEvents();
}

// The main window on a desk, shown and active, of a user who is `presence`. Deleted by itself when
// it closes.
struct OpenWindow {
    explicit OpenWindow(Desk& desk)
        : hold(desk.app.scheduler, presence, desk.app.focus, desk.loop),
          window(new MainWindow(desk.app, hold.current())) {
        window->comeForward();
        if (!QTest::qWaitForWindowActive(window)) std::abort();
    }
    ~OpenWindow() { delete window; }
    MainWindow* operator->() const { return window; }
    MainWindow& operator*() const { return *window; }

    Observable<Presence> presence;
    AlertHoldMonitor hold;
    QPointer<MainWindow> window;
};

}  // namespace tendel::test

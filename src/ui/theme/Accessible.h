#pragma once

#include <QAccessibleWidget>

namespace tendel {

// Has assistive programs see every `Widget` through an `Interface` made of it. Called by the
// widget's constructor; what was said once for a class holds while the program runs.
template <class Widget, class Interface>
void tellThrough() {
    static const bool isInstalled = [] {
        QAccessible::installFactory([](const QString&, QObject* object) -> QAccessibleInterface* {
            auto* widget = qobject_cast<Widget*>(object);
            return widget ? new Interface(widget) : nullptr;
        });
        return true;
    }();
    static_cast<void>(isInstalled);
}

// Has them see every `Widget` as a thing of this role.
template <class Widget, QAccessible::Role kind>
void tellAs() {
    struct Interface : QAccessibleWidget {
        explicit Interface(QWidget* widget) : QAccessibleWidget(widget, kind) {}
    };
    tellThrough<Widget, Interface>();
}

}  // namespace tendel

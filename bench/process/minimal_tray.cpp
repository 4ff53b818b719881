// The least that a Qt program with a tray icon and a menu is: what the whole-process figures of
// Tendel are compared with.

#include <QApplication>
#include <QMenu>
#include <QPixmap>
#include <QSystemTrayIcon>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);

    QPixmap dot(22, 22);
    dot.fill(Qt::white);
    QMenu menu;
    menu.addAction("Quit", &application, &QApplication::quit);
    QSystemTrayIcon icon{QIcon(dot)};
    icon.setContextMenu(&menu);
    icon.show();
    return QApplication::exec();
}

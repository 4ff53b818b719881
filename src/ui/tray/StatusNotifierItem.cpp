#include "ui/tray/StatusNotifierItem.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QGuiApplication>
#include <QScreen>
#include <QtEndian>

#include <utility>

#include "ui/tray/TrayMenu.h"

namespace tendel {

namespace {

constexpr auto itemPath = "/StatusNotifierItem";
constexpr auto menuPath = "/StatusNotifierItem/Menu";

// Pixels: the usual sizes of panels, and those at twice the scale.
constexpr int iconSizes[] = {16, 22, 24, 32, 44, 48, 64, 96};

TrayPixmap pixmapOf(const QImage& drawn) {
    const QImage image = drawn.convertToFormat(QImage::Format_ARGB32);
    TrayPixmap pixmap{.width = image.width(), .height = image.height()};
    pixmap.argb.resize(image.sizeInBytes());
    qToBigEndian<quint32>(image.constBits(), image.sizeInBytes() / 4, pixmap.argb.data());
    return pixmap;
}

// Pixels of the X server in the coordinates of the screens: Qt keeps the corners of the screens and
// divides distances from them by their scale.
QPoint scaled(QPoint pixels) {
    for (const QScreen* screen : QGuiApplication::screens()) {
        const QPoint corner = screen->geometry().topLeft();
        const double ratio = screen->devicePixelRatio();
        if (QRect(corner, screen->geometry().size() * ratio).contains(pixels))
            return corner + (pixels - corner) / ratio;
    }
    return pixels;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& value) {
    argument.beginStructure();
    argument << value.width << value.height << value.argb;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& value) {
    argument.beginStructure();
    argument >> value.width >> value.height >> value.argb;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& value) {
    argument.beginStructure();
    argument << value.iconName << value.pixmaps << value.title << value.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& value) {
    argument.beginStructure();
    argument >> value.iconName >> value.pixmaps >> value.title >> value.text;
    argument.endStructure();
    return argument;
}

StatusNotifierItem::StatusNotifierItem(const TrayActions& actions)
    : actions_(actions),
      menu_([this](const PanelMenuEntry::Action& action) { actions_.onChoice(action); }) {
    qDBusRegisterMetaType<TrayPixmap>();
    qDBusRegisterMetaType<QList<TrayPixmap>>();
    qDBusRegisterMetaType<TrayToolTip>();
    QDBusConnection bus = QDBusConnection::sessionBus();
    bus.registerObject(itemPath, this, QDBusConnection::ExportAllContents);
    bus.registerObject(menuPath, &menu_, QDBusConnection::ExportAllContents);
}

void StatusNotifierItem::enroll() {
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.kde.StatusNotifierWatcher"),
                                               QStringLiteral("/StatusNotifierWatcher"),
                                               QStringLiteral("org.kde.StatusNotifierWatcher"),
                                               QStringLiteral("RegisterStatusNotifierItem"));
    QDBusConnection bus = QDBusConnection::sessionBus();
    call << bus.baseService();
    call.setAutoStartService(false);
    bus.send(call);
}

void StatusNotifierItem::show(const TrayContent& content) {
    const TrayContent before = std::exchange(content_, content);
    if (content.image != before.image) Q_EMIT NewIcon();
    if (content.label != before.label || content.labelGuide != before.labelGuide)
        Q_EMIT XAyatanaNewLabel(content.label, content.labelGuide);
    if (content.status != before.status || content.label != before.label) Q_EMIT NewToolTip();
    menu_.show(content.status, content.menu);
}

QDBusObjectPath StatusNotifierItem::menu() const {
    return QDBusObjectPath(menuPath);
}

QList<TrayPixmap> StatusNotifierItem::iconPixmap() const {
    QList<TrayPixmap> pixmaps;
    for (const int size : iconSizes)
        pixmaps << pixmapOf(content_.image.drawn(size));
    return pixmaps;
}

TrayToolTip StatusNotifierItem::toolTip() const {
    return {.title = content_.status, .text = content_.label};
}

void StatusNotifierItem::Activate(int x, int y) {
    // The tray gets its answer first: a window that opens may take its time.
    QMetaObject::invokeMethod(
        this, [this, at = scaled({x, y})] { actions_.onActivate(at); }, Qt::QueuedConnection);
}

void StatusNotifierItem::SecondaryActivate(int, int) {
    actions_.onSecondaryActivate();
}

// For trays that leave the drawing of the menu to the program.
void StatusNotifierItem::ContextMenu(int x, int y) {
    TrayMenu::popUp(content_.menu, scaled({x, y}), actions_);
}

// A wheel over the icon is an accident more often than a wish.
void StatusNotifierItem::Scroll(int, const QString&) {}

}  // namespace tendel

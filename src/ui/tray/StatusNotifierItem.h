#pragma once

#include <QByteArray>
#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QList>
#include <QObject>

#include "ui/tray/DBusMenu.h"
#include "ui/tray/TrayContent.h"

namespace tendel {

// The values of org.kde.StatusNotifierItem, with their signatures on the bus.
struct TrayPixmap {  // (iiay)
    int width = 0;
    int height = 0;
    QByteArray argb{};  // 32 bits a pixel, most significant byte first
};
struct TrayToolTip {  // (sa(iiay)ss)
    QString iconName{};
    QList<TrayPixmap> pixmaps{};
    QString title{};
    QString text{};
};

// The icon in trays that are on the session bus: an object that they read from and send clicks to.
// Without a bus it does nothing. Main thread only; `actions` must outlive it.
class StatusNotifierItem : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
    Q_PROPERTY(QString Category READ category CONSTANT)
    Q_PROPERTY(QString Id READ id CONSTANT)
    Q_PROPERTY(QString Title READ title CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(int WindowId READ windowId CONSTANT)
    Q_PROPERTY(bool ItemIsMenu READ itemIsMenu CONSTANT)
    Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)
    Q_PROPERTY(QString IconName READ noName CONSTANT)
    Q_PROPERTY(QString OverlayIconName READ noName CONSTANT)
    Q_PROPERTY(QString AttentionIconName READ noName CONSTANT)
    Q_PROPERTY(QList<tendel::TrayPixmap> IconPixmap READ iconPixmap)
    Q_PROPERTY(tendel::TrayToolTip ToolTip READ toolTip)
    Q_PROPERTY(QString XAyatanaLabel READ label)
    Q_PROPERTY(QString XAyatanaLabelGuide READ labelGuide)
public:
    explicit StatusNotifierItem(const TrayActions& actions);

    // Tells the watcher of trays that the icon is there; to be called for each new watcher.
    void enroll();
    // Tells the trays what differs.
    void show(const TrayContent& content);

    QString category() const { return QStringLiteral("ApplicationStatus"); }
    QString id() const { return QStringLiteral("app.tendel.Tendel"); }
    QString title() const { return QStringLiteral("Tendel"); }
    QString status() const { return QStringLiteral("Active"); }
    int windowId() const { return 0; }
    bool itemIsMenu() const { return false; }
    QDBusObjectPath menu() const;
    QString noName() const { return {}; }
    QList<TrayPixmap> iconPixmap() const;
    TrayToolTip toolTip() const;
    QString label() const { return content_.label; }
    QString labelGuide() const { return content_.labelGuide; }

public Q_SLOTS:
    // The names are those of the interface on the bus. Places are in pixels of the X server.
    void Activate(int x, int y);
    void SecondaryActivate(int x, int y);
    void ContextMenu(int x, int y);
    void Scroll(int delta, const QString& orientation);

Q_SIGNALS:
    void NewTitle();
    void NewIcon();
    void NewOverlayIcon();
    void NewAttentionIcon();
    void NewToolTip();
    void NewStatus(const QString& status);
    void XAyatanaNewLabel(const QString& label, const QString& guide);

private:
    const TrayActions& actions_;
    TrayContent content_;
    DBusMenu menu_;
};

QDBusArgument& operator<<(QDBusArgument& argument, const TrayPixmap& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayPixmap& value);
QDBusArgument& operator<<(QDBusArgument& argument, const TrayToolTip& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, TrayToolTip& value);

}  // namespace tendel

#pragma once

#include <QDBusArgument>
#include <QDBusVariant>
#include <QList>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <functional>
#include <vector>

#include "menubar/PanelMenu.h"

namespace tendel {

// The values of com.canonical.dbusmenu, with their signatures on the bus.
struct DBusMenuLayout {  // (ia{sv}av)
    int id = 0;
    QVariantMap properties{};
    QList<DBusMenuLayout> children{};
};
struct DBusMenuProperties {  // (ia{sv})
    int id = 0;
    QVariantMap properties{};
};
struct DBusMenuKeys {  // (ias)
    int id = 0;
    QStringList keys{};
};
struct DBusMenuEvent {  // (isvu)
    int id = 0;
    QString type{};
    QDBusVariant data{};
    uint timestamp = 0;
};

// A menu that the tray draws: rows of the panel's menu below a line that tells how things stand,
// for trays that have nothing else to show it in. Main thread only.
class DBusMenu : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
    Q_PROPERTY(uint Version READ version CONSTANT)
    Q_PROPERTY(QString Status READ status CONSTANT)
    Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
    Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)
public:
    explicit DBusMenu(std::function<void(const PanelMenuEntry::Action&)> onChoice);

    // Tells the trays what differs; `status` may be empty.
    void show(const QString& status, const std::vector<PanelMenuEntry>& entries);

    uint version() const { return 3; }
    QString status() const { return QStringLiteral("normal"); }
    QString textDirection() const { return QStringLiteral("ltr"); }
    QStringList iconThemePath() const { return {}; }

public Q_SLOTS:
    // The names are those of the interface on the bus. Rows that do not exist are left out of
    // answers, and nothing happens to them.
    uint GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                   tendel::DBusMenuLayout& layout);
    QList<tendel::DBusMenuProperties> GetGroupProperties(const QList<int>& ids,
                                                         const QStringList& propertyNames);
    QDBusVariant GetProperty(int id, const QString& name);
    void Event(int id, const QString& type, const QDBusVariant& data, uint timestamp);
    QList<int> EventGroup(const QList<tendel::DBusMenuEvent>& events);
    bool AboutToShow(int id);
    QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors);

Q_SIGNALS:
    void ItemsPropertiesUpdated(const QList<tendel::DBusMenuProperties>& updated,
                                const QList<tendel::DBusMenuKeys>& removed);
    void LayoutUpdated(uint revision, int parent);
    void ItemActivationRequested(int id, uint timestamp);

private:
    struct Row {
        DBusMenuProperties item;
        PanelMenuEntry::Action action{};
        std::vector<Row> rows{};
    };

    static Row rowOf(const PanelMenuEntry& entry);
    static std::vector<Row> rowsOf(const std::vector<PanelMenuEntry>& entries);
    static const Row* find(const Row& row, int id);
    static DBusMenuLayout layoutOf(const Row& row, int depth, const QStringList& names);
    static void collect(const Row& row, QList<DBusMenuProperties>& all);

    std::function<void(const PanelMenuEntry::Action&)> onChoice_;
    Row root_;
    uint revision_ = 1;
};

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& value);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& value);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuKeys& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuKeys& value);
QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& value);
const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& value);

}  // namespace tendel

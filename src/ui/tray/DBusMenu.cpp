#include "ui/tray/DBusMenu.h"

#include <QDBusMetaType>

#include <algorithm>
#include <utility>

#include "ui/theme/QtText.h"

namespace tendel {

namespace {

// Above those of the panel's menu.
constexpr int statusId = 1000;
constexpr int separatorIds = statusId + 1;  // and what the row below it has

// An underscore would mark the letter that chooses the row.
QString escaped(QString text) {
    return text.replace(u'_', QStringLiteral("__"));
}

QVariantMap chosen(const QVariantMap& properties, const QStringList& names) {
    if (names.isEmpty()) return properties;
    QVariantMap found;
    for (const QString& name : names)
        if (properties.contains(name)) found.insert(name, properties.value(name));
    return found;
}

template <class... Fields>
QDBusArgument& write(QDBusArgument& argument, const Fields&... fields) {
    argument.beginStructure();
    (argument << ... << fields);
    argument.endStructure();
    return argument;
}

template <class... Fields>
const QDBusArgument& read(const QDBusArgument& argument, Fields&... fields) {
    argument.beginStructure();
    (argument >> ... >> fields);
    argument.endStructure();
    return argument;
}

}  // namespace

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuLayout& value) {
    QVariantList children;
    for (const DBusMenuLayout& child : value.children)
        children << QVariant::fromValue(child);
    return write(argument, value.id, value.properties, children);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuLayout& value) {
    QVariantList children;
    read(argument, value.id, value.properties, children);
    for (const QVariant& child : std::as_const(children))
        value.children << qdbus_cast<DBusMenuLayout>(child);
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuProperties& value) {
    return write(argument, value.id, value.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuProperties& value) {
    return read(argument, value.id, value.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuKeys& value) {
    return write(argument, value.id, value.keys);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuKeys& value) {
    return read(argument, value.id, value.keys);
}

QDBusArgument& operator<<(QDBusArgument& argument, const DBusMenuEvent& value) {
    return write(argument, value.id, value.type, value.data, value.timestamp);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, DBusMenuEvent& value) {
    return read(argument, value.id, value.type, value.data, value.timestamp);
}

DBusMenu::DBusMenu(std::function<void(const PanelMenuEntry::Action&)> onChoice)
    : onChoice_(std::move(onChoice)) {
    qDBusRegisterMetaType<DBusMenuLayout>();
    qDBusRegisterMetaType<DBusMenuProperties>();
    qDBusRegisterMetaType<QList<DBusMenuProperties>>();
    qDBusRegisterMetaType<DBusMenuKeys>();
    qDBusRegisterMetaType<QList<DBusMenuKeys>>();
    qDBusRegisterMetaType<DBusMenuEvent>();
    qDBusRegisterMetaType<QList<DBusMenuEvent>>();
    root_.item.properties = {{QStringLiteral("children-display"), QStringLiteral("submenu")}};
}

DBusMenu::Row DBusMenu::rowOf(const PanelMenuEntry& entry) {
    Row row{.item = {.id = entry.id,
                     .properties = {{QStringLiteral("label"), escaped(toQString(entry.title))}}},
            .action = entry.action,
            .rows = rowsOf(entry.entries)};
    if (!row.rows.empty())
        row.item.properties.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
    return row;
}

std::vector<DBusMenu::Row> DBusMenu::rowsOf(const std::vector<PanelMenuEntry>& entries) {
    std::vector<Row> rows;
    for (const PanelMenuEntry& entry : entries) {
        if (entry.startsGroup)
            rows.push_back(
                {.item = {.id = separatorIds + entry.id,
                          .properties = {{QStringLiteral("type"), QStringLiteral("separator")}}}});
        rows.push_back(rowOf(entry));
    }
    return rows;
}

void DBusMenu::show(const QString& status, const std::vector<PanelMenuEntry>& entries) {
    std::vector<PanelMenuEntry> below = entries;
    std::vector<Row> rows;
    if (!status.isEmpty()) {
        rows.push_back({.item = {.id = statusId,
                                 .properties = {{QStringLiteral("label"), escaped(status)},
                                                {QStringLiteral("enabled"), false}}}});
        if (!below.empty()) below.front().startsGroup = true;
    }
    for (Row& row : rowsOf(below))
        rows.push_back(std::move(row));

    QList<DBusMenuProperties> before, after;
    collect(root_, before);
    root_.rows = std::move(rows);
    collect(root_, after);
    const auto sameRow = [](const DBusMenuProperties& one, const DBusMenuProperties& other) {
        return one.id == other.id && one.properties.keys() == other.properties.keys();
    };
    if (!std::ranges::equal(before, after, sameRow)) {
        Q_EMIT LayoutUpdated(++revision_, root_.item.id);
        return;
    }
    QList<DBusMenuProperties> updated;
    for (qsizetype i = 0; i < after.size(); ++i)
        if (after[i].properties != before[i].properties) updated << after[i];
    if (!updated.isEmpty()) Q_EMIT ItemsPropertiesUpdated(updated, {});
}

const DBusMenu::Row* DBusMenu::find(const Row& row, int id) {
    if (row.item.id == id) return &row;
    for (const Row& below : row.rows)
        if (const Row* found = find(below, id)) return found;
    return nullptr;
}

DBusMenuLayout DBusMenu::layoutOf(const Row& row, int depth, const QStringList& names) {
    DBusMenuLayout layout{.id = row.item.id, .properties = chosen(row.item.properties, names)};
    if (depth == 0) return layout;
    // Below zero: as deep as it goes.
    for (const Row& below : row.rows)
        layout.children << layoutOf(below, depth - 1, names);
    return layout;
}

void DBusMenu::collect(const Row& row, QList<DBusMenuProperties>& all) {
    all << row.item;
    for (const Row& below : row.rows)
        collect(below, all);
}

uint DBusMenu::GetLayout(int parentId, int recursionDepth, const QStringList& propertyNames,
                         DBusMenuLayout& layout) {
    if (const Row* row = find(root_, parentId))
        layout = layoutOf(*row, recursionDepth, propertyNames);
    return revision_;
}

QList<DBusMenuProperties> DBusMenu::GetGroupProperties(const QList<int>& ids,
                                                       const QStringList& propertyNames) {
    QList<DBusMenuProperties> all;
    collect(root_, all);
    // No ids: those of all rows.
    if (!ids.isEmpty())
        all.removeIf([&](const DBusMenuProperties& item) { return !ids.contains(item.id); });
    for (DBusMenuProperties& item : all)
        item.properties = chosen(item.properties, propertyNames);
    return all;
}

QDBusVariant DBusMenu::GetProperty(int id, const QString& name) {
    const Row* row = find(root_, id);
    return QDBusVariant(row ? row->item.properties.value(name, QString()) : QVariant(QString()));
}

void DBusMenu::Event(int id, const QString& type, const QDBusVariant&, uint) {
    if (type != QLatin1String("clicked")) return;
    const Row* row = find(root_, id);
    if (!row) return;
    // The tray gets its answer first: a window that opens may take its time.
    QMetaObject::invokeMethod(
        this, [this, action = row->action] { onChoice_(action); }, Qt::QueuedConnection);
}

QList<int> DBusMenu::EventGroup(const QList<DBusMenuEvent>& events) {
    QList<int> unknown;
    for (const DBusMenuEvent& event : events) {
        if (!find(root_, event.id)) unknown << event.id;
        Event(event.id, event.type, event.data, event.timestamp);
    }
    return unknown;
}

bool DBusMenu::AboutToShow(int) {
    return false;  // it is always up to date
}

QList<int> DBusMenu::AboutToShowGroup(const QList<int>& ids, QList<int>& idErrors) {
    for (const int id : ids)
        if (!find(root_, id)) idErrors << id;
    return {};
}

}  // namespace tendel

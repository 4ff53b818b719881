#include "ui/tray/DBusMenu.h"

#include <gtest/gtest.h>

namespace tendel {

namespace {

struct ShownMenu {
    ShownMenu() {
        QObject::connect(&menu, &DBusMenu::LayoutUpdated, &menu, [this] { told += u'L'; });
        QObject::connect(&menu, &DBusMenu::ItemsPropertiesUpdated, &menu,
                         [this](const QList<DBusMenuProperties>& updated) {
                             for (const DBusMenuProperties& item : updated)
                                 told += item.properties[QStringLiteral("label")].toString();
                         });
    }
    QString rows() {
        DBusMenuLayout layout;
        menu.GetLayout(0, -1, {}, layout);
        QString rows;
        for (const DBusMenuLayout& row : layout.children) {
            const auto& properties = row.properties;
            rows += properties.contains(QStringLiteral("type"))
                        ? QStringLiteral("|")
                        : u' ' + properties[QStringLiteral("label")].toString();
            if (!properties.value(QStringLiteral("enabled"), true).toBool()) rows += u'-';
            if (!row.children.isEmpty()) rows += QStringLiteral(">%1").arg(row.children.size());
        }
        return rows;
    }

    DBusMenu menu{[](const PanelMenuEntry::Action&) {}};
    QString told;  // a letter for a new layout, else the labels of changed rows
};

}  // namespace

TEST(DBusMenu, TellsOfNewRowsAndOfNewLabelsApart) {
    ShownMenu shown;
    PanelMenuEntry pause{.id = 20, .title = "Pause", .entries = {{.id = 21, .title = "30_min"}}};
    const PanelMenuEntry quit{.id = 7, .title = "Quit", .startsGroup = true};
    const struct {
        const char* status;
        std::vector<PanelMenuEntry> entries;
        const char* told;
        const char* rows;
    } steps[] = {
        {"", {pause, quit}, "L", " Pause>1| Quit"},
        {"", {pause, quit}, "", " Pause>1| Quit"},
        {"Next: a_b", {pause, quit}, "L", " Next: a__b-| Pause>1| Quit"},
        {"Paused", {pause, quit}, "Paused", " Paused-| Pause>1| Quit"},
        {"Paused", {quit}, "L", " Paused-| Quit"},
        {"Away", {}, "L", " Away-"},
    };
    for (const auto& [status, entries, told, rows] : steps) {
        shown.told.clear();
        shown.menu.show(QString::fromUtf8(status), entries);
        EXPECT_EQ(shown.told.toStdString(), told) << rows;
        EXPECT_EQ(shown.rows().toStdString(), rows);
    }
}

}  // namespace tendel

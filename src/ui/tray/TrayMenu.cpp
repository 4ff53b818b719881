#include "ui/tray/TrayMenu.h"

#include "ui/theme/QtText.h"

namespace tendel {

namespace {

// An ampersand would mark the letter that chooses the row.
QString escaped(QString text) {
    return text.replace(u'&', QStringLiteral("&&"));
}

void add(QMenu& menu, const std::vector<PanelMenuEntry>& entries, const TrayActions& actions) {
    for (const PanelMenuEntry& entry : entries) {
        if (entry.startsGroup) menu.addSeparator();
        const QString title = escaped(toQString(entry.title));
        if (!entry.entries.empty()) {
            auto* below = new Menu(&menu);
            below->setTitle(title);
            menu.addMenu(below);
            add(*below, entry.entries, actions);
            continue;
        }
        QAction* action = menu.addAction(title);
        QObject::connect(action, &QAction::triggered, &menu,
                         [&actions, chosen = entry.action] { actions.onChoice(chosen); });
    }
}

}  // namespace

void TrayMenu::show(const std::vector<PanelMenuEntry>& entries) {
    clear();
    add(*this, entries, actions_);
}

void TrayMenu::popUp(const std::vector<PanelMenuEntry>& entries, QPoint at,
                     const TrayActions& actions) {
    auto* menu = new TrayMenu(actions);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->show(entries);
    menu->popup(at);
}

}  // namespace tendel

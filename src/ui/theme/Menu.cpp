#include "ui/theme/Menu.h"

#include "ui/theme/Theme.h"

namespace tendel {

Menu::Menu(QWidget* parent) : QMenu(parent) {
    connect(&Theme::instance(), &Theme::changed, this, &Menu::followTheme);
    followTheme();
}

void Menu::followTheme() {
    const Theme& theme = Theme::instance();
    const QColor surface = theme.color(Theme::Color::surface);
    const QColor text = theme.color(Theme::Color::text);
    // Without a compositor the corners of a window cannot be round; those of its entries are.
    setStyleSheet(
        QStringLiteral("QMenu { background: %1; border: 1px solid %2; padding: 4px; }"
                       "QMenu::item { color: %3; padding: 6px 24px 6px 12px;"
                       " border-radius: %4px; }"
                       "QMenu::item:selected { background: %5; }"
                       "QMenu::item:disabled { color: %6; }"
                       "QMenu::separator { height: 1px; background: %2; margin: 4px 8px; }")
            .arg(surface.name(), blended(text, surface, 0.14).name(), text.name())
            .arg(Theme::controlRadius)
            .arg(blended(text, surface, 0.08).name(), theme.color(Theme::Color::faint).name()));
    setFont(theme.font(Theme::Type::body));
}

}  // namespace tendel

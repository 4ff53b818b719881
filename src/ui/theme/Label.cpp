#include "ui/theme/Label.h"

namespace tendel {

Label::Label(Style style, const QString& text, QWidget* parent)
    : QLabel(text, parent), style_(style) {
    // What a person typed is shown, never read as markup.
    setTextFormat(Qt::PlainText);
    apply();
    connect(&Theme::instance(), &Theme::changed, this, &Label::apply);
}

void Label::setColor(Theme::Color color) {
    if (color == style_.color) return;
    style_.color = color;
    apply();
}

void Label::apply() {
    const Theme& theme = Theme::instance();
    setFont(theme.font(style_.type, style_.isSemibold));
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, theme.color(style_.color));
    setPalette(colors);
}

}  // namespace tendel

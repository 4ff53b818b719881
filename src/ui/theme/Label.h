#pragma once

#include <QLabel>

#include "ui/theme/Theme.h"

namespace tendel {

// Text of the type scale in one of the theme's colours, which it follows. Wraps when allowed to.
class Label : public QLabel {
    Q_OBJECT
public:
    struct Style {
        Theme::Type type = Theme::Type::body;
        Theme::Color color = Theme::Color::text;
        bool isSemibold = false;
    };

    explicit Label(Style style, const QString& text = {}, QWidget* parent = nullptr);
    void setColor(Theme::Color color);

private:
    void apply();

    Style style_;
};

}  // namespace tendel

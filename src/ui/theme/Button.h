#pragma once

#include <string>

#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

// A button with a text and, optionally, a symbol before it.
class Button : public PaintedButton {
    Q_OBJECT
public:
    enum class Role {
        primary,      // the one important action of a surface, 32 high
        normal,       // 28 high
        quiet,        // text alone, until the pointer is over it
        destructive,  // what cannot be undone
    };

    Button(Role role, const QString& text, QWidget* parent = nullptr);
    void setSymbol(std::string symbol);
    // What a primary button is filled with, where its surface has a colour of its own.
    void setAccent(Theme::Color role);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool isFilled() const { return role_ == Role::primary || role_ == Role::destructive; }
    QFont textFont() const;
    QColor background() const;

    Role role_;
    Theme::Color accent_;
    std::string symbol_;
};

// A button that is a symbol alone; its name is told to screen readers and shown as a tooltip.
class IconButton : public PaintedButton {
    Q_OBJECT
public:
    IconButton(std::string symbol, const QString& name, QWidget* parent = nullptr);
    void setMeaning(std::string symbol, const QString& name);

    QSize sizeHint() const override;
    // Another tint than that of secondary text, while the pointer is over it.
    void setHoverColor(Theme::Color role) { hoverColor_ = role; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::string symbol_;
    Theme::Color hoverColor_ = Theme::Color::text;
};

}  // namespace tendel

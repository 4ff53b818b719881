#pragma once

#include <QColor>
#include <QFont>
#include <QObject>

#include "model/Reminder.h"

namespace tendel {

// The colours, type and measures that every surface shares. Follows the desktop's colour scheme
// while the program runs. One instance lives in the program, made after QApplication; widgets
// repaint on `changed`. Main thread only.
class Theme : public QObject {
    Q_OBJECT
public:
    enum class Scheme { light, dark };
    enum class Color {
        window,
        surface,
        sidebar,
        text,
        secondary,
        faint,  // decoration and what is switched off; too pale for text that must be read
        hairline,
        workAccent,
        privateAccent,
        focusAccent,
        good,
        missed,
        snoozed
    };
    enum class Type { caption = 11, body = 13, title = 15, section = 20, figure = 28, clock = 44 };

    static Theme& instance();

    // The desktop's preferences, set as they become known. Until then the application's palette
    // says which scheme it is.
    void setDark(bool isDark) { setScheme(isDark ? Scheme::dark : Scheme::light); }
    void setScheme(Scheme scheme);
    void setHighContrast(bool isHighContrast);
    // The family of the desktop's interface font; an unknown one changes nothing.
    void setFontFamily(const QString& family);

    Scheme scheme() const { return scheme_; }
    bool isDark() const { return scheme_ == Scheme::dark; }
    QColor color(Color role) const;
    QColor accent(ReminderKind kind) const;
    // The same of one scheme, for surfaces that do not follow the desktop's.
    static QColor color(Color role, Scheme scheme);
    static QColor accent(ReminderKind kind, Scheme scheme);
    // White or near black, whichever is read on `background`.
    static QColor textOn(const QColor& background);

    // The desktop's interface font; `type` is its size in device-independent pixels. Digits that
    // change in place are drawn with TabularText.h.
    QFont font(Type type, bool isSemibold = false) const;

    static constexpr int controlRadius = 6;
    static constexpr int cardRadius = 10;
    static constexpr int panelRadius = 14;

Q_SIGNALS:
    void changed();

private:
    Theme();
    void apply();

    Scheme scheme_ = Scheme::light;
    bool isHighContrast_ = false;
    QString family_;
};

// The accent of a kind of reminders.
constexpr Theme::Color accentRole(ReminderKind kind) {
    return kind == ReminderKind::work ? Theme::Color::workAccent : Theme::Color::privateAccent;
}

// How far two colours are apart for a reader, 1 to 21 (WCAG 2.1, relative luminance).
double contrast(const QColor& a, const QColor& b);
// `top` at `opacity` (0–1) over `bottom`, as an opaque colour.
QColor blended(const QColor& top, const QColor& bottom, double opacity);

}  // namespace tendel

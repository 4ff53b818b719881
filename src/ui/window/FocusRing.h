#pragma once

#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

#include "ui/theme/Theme.h"

namespace tendel {

// The ring that empties with a phase, the time that is left in it. Nothing for the keyboard; a
// screen reader hears the phase and the minutes.
class FocusRing : public QWidget {
    Q_OBJECT
public:
    enum class Change { atOnce, fading };

    struct Content {
        QString title{};
        QString note{};     // beneath the time
        int seconds = 0;    // left
        double length = 0;  // of the phase in seconds; 0: there is nothing to empty
        Theme::Color color = Theme::Color::focusAccent;
        bool isResting = false;  // the time stands still
    };

    explicit FocusRing(QWidget* parent = nullptr);

    // Shows another phase, or the same one otherwise.
    void setContent(Content content, Change change);
    // The same phase a little later: repaints what differs.
    void setSeconds(int seconds);

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QRectF circle() const;
    QRectF digitsBox() const;
    // Of the arc that is left, in degrees.
    double span(int seconds) const;
    // Around the arc's end.
    QRect tip(int seconds) const;
    QRect changedDigits(const QString& before, const QString& after) const;
    void paintContent(QPainter& painter) const;
    void describe();

    Content content_;
    QPixmap before_;
    QVariantAnimation fade_;
};

}  // namespace tendel

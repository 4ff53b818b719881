#pragma once

#include <QAbstractButton>
#include <QPainter>

namespace tendel {

// The space that every control leaves around its shape for the focus ring.
inline constexpr int focusMargin = 3;

// The ring around a control's shape that shows where the keyboard is.
void drawFocusRing(QPainter& painter, const QRectF& shape, double radius);
// A line of one device pixel inside the edge of a rounded rectangle.
void drawHairline(QPainter& painter, const QRectF& shape, double radius, const QColor& color);
// Whether focus that arrives for this reason is shown: not when the pointer brought it.
constexpr bool isShownFocus(Qt::FocusReason reason) {
    return reason != Qt::MouseFocusReason && reason != Qt::PopupFocusReason &&
           reason != Qt::ActiveWindowFocusReason;
}

// What the controls that are drawn here share: hover, and a focus ring that shows for the keyboard
// but not for the pointer. Return presses what is not a choice.
class PaintedButton : public QAbstractButton {
    Q_OBJECT
public:
    explicit PaintedButton(QWidget* parent = nullptr);

    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool isHovered() const { return isEnabled() && underMouse(); }
    bool showsFocus() const { return hasFocus() && isFocusShown_; }
    // The control without the space for its ring.
    QRectF shape() const {
        return QRectF(rect()).adjusted(focusMargin, focusMargin, -focusMargin, -focusMargin);
    }

    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    bool isFocusShown_ = false;
};

}  // namespace tendel

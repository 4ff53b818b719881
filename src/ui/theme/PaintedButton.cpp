#include "ui/theme/PaintedButton.h"

#include <QFocusEvent>
#include <QKeyEvent>

#include "ui/theme/Accessible.h"
#include "ui/theme/Theme.h"

namespace tendel {

void drawFocusRing(QPainter& painter, const QRectF& shape, double radius) {
    constexpr double width = 2;
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(Theme::instance().color(Theme::Color::workAccent), width));
    const double out = 1 + width / 2;
    painter.drawRoundedRect(shape.adjusted(-out, -out, out, out), radius + out, radius + out);
}

void drawHairline(QPainter& painter, const QRectF& shape, double radius, const QColor& color) {
    const double width = 1 / painter.device()->devicePixelRatioF();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, width));
    const double in = width / 2;
    painter.drawRoundedRect(shape.adjusted(in, in, -in, -in), radius - in, radius - in);
}

namespace {

// A button as assistive technology has it. Qt's own turns a choice over without the click by which
// the program learns of it.
class AccessibleButton : public QAccessibleWidget {
public:
    explicit AccessibleButton(PaintedButton* button) : QAccessibleWidget(button) {}

    // Asked each time: a button becomes a choice after it was made.
    QAccessible::Role role() const override {
        if (!button().isCheckable()) return QAccessible::Button;
        return button().autoExclusive() ? QAccessible::RadioButton : QAccessible::CheckBox;
    }
    QString text(QAccessible::Text kind) const override {
        const QString given = QAccessibleWidget::text(kind);
        return kind == QAccessible::Name && given.isEmpty() ? button().text() : given;
    }
    QAccessible::State state() const override {
        auto state = QAccessibleWidget::state();
        state.checkable = button().isCheckable();
        state.checked = button().isChecked();
        state.pressed = button().isDown();
        return state;
    }
    QStringList actionNames() const override {
        if (!button().isEnabled()) return {};
        return {button().isCheckable() ? toggleAction() : pressAction(), setFocusAction()};
    }
    void doAction(const QString& name) override {
        if (name == toggleAction() || name == pressAction())
            button().click();
        else
            QAccessibleWidget::doAction(name);
    }

private:
    PaintedButton& button() const { return *static_cast<PaintedButton*>(object()); }
};

}  // namespace

PaintedButton::PaintedButton(QWidget* parent) : QAbstractButton(parent) {
    tellThrough<PaintedButton, AccessibleButton>();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_Hover);
}

void PaintedButton::focusInEvent(QFocusEvent* event) {
    // The window coming back changes nothing about how the focus got here.
    if (event->reason() != Qt::ActiveWindowFocusReason)
        isFocusShown_ = isShownFocus(event->reason());
    QAbstractButton::focusInEvent(event);
}

void PaintedButton::keyPressEvent(QKeyEvent* event) {
    isFocusShown_ = true;
    switch (event->key()) {
        case Qt::Key_Return:
        case Qt::Key_Enter:
            if (isCheckable()) {
                event->ignore();  // Space changes a choice; Return is for the whole surface
                return;
            }
            if (!event->isAutoRepeat()) click();
            return;
        case Qt::Key_Left:
        case Qt::Key_Right:
        case Qt::Key_Up:
        case Qt::Key_Down:
            event->ignore();  // the group that the button belongs to moves among its buttons
            return;
        default:
            QAbstractButton::keyPressEvent(event);
    }
}

}  // namespace tendel

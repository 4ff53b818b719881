#include "ui/theme/Stepper.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPainter>
#include <QScopedValueRollback>
#include <QSpinBox>

#include <algorithm>

#include "ui/theme/Button.h"
#include "ui/theme/PaintedButton.h"

namespace tendel {

namespace {
constexpr int fieldHeight = 32;
constexpr int largest = 999;
}  // namespace

// The number alone; what is around it is drawn by the stepper.
class Stepper::Number : public QSpinBox {
public:
    explicit Number(Stepper* owner) : QSpinBox(owner), owner_(owner) {
        setButtonSymbols(NoButtons);
        setFrame(false);
        setAlignment(Qt::AlignCenter);
        setKeyboardTracking(false);
        lineEdit()->setFrame(false);
        QPalette clear = palette();
        clear.setColor(QPalette::Base, Qt::transparent);
        setPalette(clear);
        lineEdit()->setPalette(clear);
        connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
    }

    void stepBy(int steps) override { owner_->step(steps); }

protected:
    StepEnabled stepEnabled() const override { return StepUpEnabled | StepDownEnabled; }
    void paintEvent(QPaintEvent*) override {}
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
    void keyPressEvent(QKeyEvent* event) override {
        // What was typed counts now; the key itself is for the whole surface.
        if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter) {
            interpretText();
            return event->ignore();
        }
        QSpinBox::keyPressEvent(event);
    }

private:
    Stepper* owner_;
};

Stepper::Stepper(const QString& name, Range range, QWidget* parent)
    : QWidget(parent),
      range_(std::move(range)),
      number_(new Number(this)),
      less_(new IconButton("minus", name + tr(": less"), this)),
      more_(new IconButton("plus", name + tr(": more"), this)) {
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusProxy(number_);
    number_->setAccessibleName(name);
    number_->setRange(0, std::max(largest, range_.most));
    number_->setSuffix(range_.suffix);
    number_->setSpecialValueText(range_.offText);
    number_->installEventFilter(this);
    for (IconButton* button : {less_, more_}) {
        button->setFocusPolicy(Qt::NoFocus);
        button->setAutoRepeat(true);
        button->setToolTip({});
        connect(button, &QAbstractButton::clicked, this,
                [this, button] { step(button == more_ ? 1 : -1); });
    }
    connect(number_, &QSpinBox::valueChanged, this, &Stepper::didChange);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
    setValue(range_.least);
}

int Stepper::value() const {
    return number_->value();
}

void Stepper::setValue(int value) {
    const QScopedValueRollback setting(isBeingSet_, true);
    number_->setMaximum(std::max({largest, range_.most, value}));
    number_->setValue(value);
    refreshButtons();
}

void Stepper::setExplanation(const QString& text) {
    number_->setAccessibleDescription(text);
}

int Stepper::inRange(int value) const {
    if (value <= 0 && !range_.offText.isEmpty()) return 0;
    return std::clamp(value, range_.least, range_.most);
}

void Stepper::step(int steps) {
    number_->interpretText();
    const int grid = range_.step;
    const int now = value();
    int next = steps > 0 ? (now / grid + steps) * grid : ((now + grid - 1) / grid + steps) * grid;
    if (steps < 0 && next < range_.least && !range_.offText.isEmpty()) next = 0;
    number_->setValue(inRange(next));
}

void Stepper::didChange(int value) {
    if (isBeingSet_) return;
    if (const int allowed = inRange(value); allowed != value) {
        setValue(allowed);
        value = allowed;
    }
    refreshButtons();
    Q_EMIT chosen(value);
}

void Stepper::refreshButtons() {
    const int lowest = range_.offText.isEmpty() ? range_.least : 0;
    less_->setEnabled(value() > lowest);
    more_->setEnabled(value() < range_.most);
}

QSize Stepper::sizeHint() const {
    const QFontMetrics metrics(Theme::instance().font(Theme::Type::body));
    const int widest =
        std::max(metrics.horizontalAdvance(QString::number(range_.most) + range_.suffix),
                 metrics.horizontalAdvance(range_.offText));
    const int buttons = 2 * (less_->sizeHint().width() - focusMargin);
    return {buttons + std::max(widest + 16, 40), fieldHeight + 2 * focusMargin};
}

void Stepper::resizeEvent(QResizeEvent*) {
    const QSize button = less_->sizeHint();
    const int top = (height() - button.height()) / 2;
    QRect left({0, top}, button);
    QRect right({width() - button.width(), top}, button);
    left.translate(focusMargin - 1, 0);
    right.translate(1 - focusMargin, 0);
    if (layoutDirection() == Qt::RightToLeft) std::swap(left, right);
    less_->setGeometry(left);
    more_->setGeometry(right);
    const int inset = button.width() - focusMargin;
    number_->setGeometry(inset, focusMargin + 1, width() - 2 * inset,
                         height() - 2 * focusMargin - 2);
}

bool Stepper::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) update();
    return QWidget::eventFilter(watched, event);
}

void Stepper::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (!isEnabled()) painter.setOpacity(0.45);
    const QRectF shape =
        QRectF(rect()).adjusted(focusMargin, focusMargin, -focusMargin, -focusMargin);
    QColor fill = theme.color(Theme::Color::text);
    fill.setAlphaF(theme.isDark() ? 0.1F : 0.06F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(shape, Theme::controlRadius, Theme::controlRadius);
    if (number_->hasFocus()) drawFocusRing(painter, shape, Theme::controlRadius);
}

}  // namespace tendel

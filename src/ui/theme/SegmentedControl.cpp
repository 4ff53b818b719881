#include "ui/theme/SegmentedControl.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QPainter>

#include <algorithm>

#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

constexpr int segmentHeight = 32;
constexpr int padding = 14;

QFont segmentFont() {
    return Theme::instance().font(Theme::Type::body);
}

class Segment : public PaintedButton {
public:
    Segment(const QString& name, QWidget* parent) : PaintedButton(parent) {
        setText(name);
        setCheckable(true);
        setAutoExclusive(true);
    }

    QSize sizeHint() const override {
        return {QFontMetrics(segmentFont()).horizontalAdvance(text()) + 2 * padding, segmentHeight};
    }

protected:
    void paintEvent(QPaintEvent*) override {
        const Theme& theme = Theme::instance();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        constexpr double inset = 2;
        const QRectF knob = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
        constexpr double radius = Theme::controlRadius - inset + 1;
        if (isChecked()) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(QColor(0, 0, 0, 24));
            painter.drawRoundedRect(knob.translated(0, 0.75), radius, radius);
            painter.setBrush(theme.isDark() ? QColor(0x63, 0x63, 0x68) : QColor(Qt::white));
            painter.drawRoundedRect(knob, radius, radius);
        }
        const bool isStrong = isChecked() || isHovered();
        painter.setPen(theme.color(isStrong ? Theme::Color::text : Theme::Color::secondary));
        painter.setFont(segmentFont());
        painter.drawText(rect(), Qt::AlignCenter, text());
        if (showsFocus()) {
            painter.setBrush(Qt::NoBrush);
            painter.setPen(QPen(theme.color(Theme::Color::workAccent), 2));
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), radius + 1, radius + 1);
        }
    }
};

}  // namespace

SegmentedControl::SegmentedControl(const QString& name, const QStringList& choices, QWidget* parent)
    : QWidget(parent) {
    setAccessibleName(name);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    for (const QString& choice : choices) {
        auto* segment = new Segment(choice, this);
        const int index = static_cast<int>(segments_.size());
        connect(segment, &QAbstractButton::clicked, this,
                [this, index] { choose(index, Qt::MouseFocusReason); });
        segments_.push_back(segment);
    }
    setCurrent(0);
}

void SegmentedControl::setCurrent(int index) {
    current_ = index;
    for (std::size_t i = 0; i < segments_.size(); ++i) {
        const bool isCurrent = static_cast<int>(i) == index;
        if (isCurrent) segments_[i]->setChecked(true);
        segments_[i]->setFocusPolicy(isCurrent ? Qt::StrongFocus : Qt::ClickFocus);
    }
}

void SegmentedControl::choose(int index, Qt::FocusReason reason) {
    const bool isNew = index != current_;
    setCurrent(index);
    if (reason != Qt::MouseFocusReason)
        segments_[static_cast<std::size_t>(index)]->setFocus(reason);
    if (isNew) Q_EMIT chosen(index);
}

QSize SegmentedControl::sizeHint() const {
    int widest = 0;
    for (const auto* segment : segments_)
        widest = std::max(widest, segment->sizeHint().width());
    return QSize(widest * static_cast<int>(segments_.size()), segmentHeight) +
           2 * QSize(focusMargin, focusMargin);
}

void SegmentedControl::resizeEvent(QResizeEvent*) {
    const int count = static_cast<int>(segments_.size());
    const QRect inner = rect().adjusted(focusMargin, focusMargin, -focusMargin, -focusMargin);
    for (int i = 0; i < count; ++i) {
        const int left = inner.width() * i / count;
        const int right = inner.width() * (i + 1) / count;
        segments_[static_cast<std::size_t>(i)]->setGeometry(inner.left() + left, inner.top(),
                                                            right - left, inner.height());
    }
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor track = Theme::instance().color(Theme::Color::text);
    track.setAlphaF(0.08F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(track);
    painter.drawRoundedRect(
        QRectF(rect()).adjusted(focusMargin, focusMargin, -focusMargin, -focusMargin),
        Theme::controlRadius + 1, Theme::controlRadius + 1);
}

void SegmentedControl::keyPressEvent(QKeyEvent* event) {
    int step = 0;
    if (event->key() == Qt::Key_Left || event->key() == Qt::Key_Up) step = -1;
    if (event->key() == Qt::Key_Right || event->key() == Qt::Key_Down) step = 1;
    if (step == 0) return QWidget::keyPressEvent(event);
    if (layoutDirection() == Qt::RightToLeft) step = -step;
    const int last = static_cast<int>(segments_.size()) - 1;
    choose(std::clamp(current_ + step, 0, last), Qt::TabFocusReason);
}

}  // namespace tendel

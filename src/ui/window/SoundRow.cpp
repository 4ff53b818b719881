#include "ui/window/SoundRow.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QPainter>
#include <QStyle>

#include <algorithm>
#include <cmath>

#include "sound/FocusSoundRules.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Label.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/Slider.h"
#include "ui/window/FocusLook.h"

namespace tendel {

namespace {

constexpr int rowHeight = 36;
constexpr int toggleWidth = 168;
constexpr int levelWidth = 40;
constexpr double circleSize = 28;
constexpr double symbolSize = 18;

double levelOf(const SoundMix& mix, FocusSound sound) {
    const auto found = mix.levels.find(sound);
    return found == mix.levels.end() ? defaultSoundLevel : std::clamp(found->second, 0.0, 1.0);
}

}  // namespace

// On it is a filled circle and strong words, off the bare symbol.
class SoundRow::Toggle : public PaintedButton {
public:
    Toggle(FocusSound sound, QWidget* parent) : PaintedButton(parent), sound_(sound) {
        setText(soundName(sound));
        setCheckable(true);
        setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    }

    void setAccent(Theme::Color role) {
        accent_ = role;
        update();
    }

    QSize sizeHint() const override { return {toggleWidth, rowHeight}; }

protected:
    void paintEvent(QPaintEvent*) override {
        const Theme& theme = Theme::instance();
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const bool isLeftToRight = layoutDirection() == Qt::LeftToRight;
        QRectF circle(0, 0, circleSize, circleSize);
        circle.moveCenter({0, shape().center().y()});
        circle.moveLeft(isLeftToRight ? shape().left() : shape().right() - circleSize);
        const QColor accent = theme.color(accent_);
        QColor fill = theme.color(Theme::Color::text);
        fill.setAlphaF(isHovered() ? 0.1F : 0.0F);
        if (isChecked()) fill = isHovered() ? blended(Qt::black, accent, 0.08) : accent;
        painter.setPen(Qt::NoPen);
        painter.setBrush(fill);
        painter.drawEllipse(circle);
        QRectF symbol(0, 0, symbolSize, symbolSize);
        symbol.moveCenter(circle.center());
        const auto ink = theme.color(isHovered() ? Theme::Color::text : Theme::Color::secondary);
        icons::draw(painter, symbolOf(sound_), symbol, isChecked() ? Theme::textOn(fill) : ink);

        constexpr double gap = 12;
        QRectF words = shape();
        if (isLeftToRight)
            words.setLeft(circle.right() + gap);
        else
            words.setRight(circle.left() - gap);
        painter.setFont(theme.font(Theme::Type::body, isChecked()));
        painter.setPen(theme.color(Theme::Color::text));
        painter.drawText(
            words, QStyle::visualAlignment(layoutDirection(), Qt::AlignLeft) | Qt::AlignVCenter,
            painter.fontMetrics().elidedText(text(), Qt::ElideRight,
                                             static_cast<int>(words.width())));
        if (showsFocus()) drawFocusRing(painter, shape(), Theme::controlRadius);
    }

private:
    FocusSound sound_;
    Theme::Color accent_ = Theme::Color::focusAccent;
};

SoundRow::SoundRow(FocusSound sound, QWidget* parent)
    : QWidget(parent),
      sound_(sound),
      toggle_(new Toggle(sound, this)),
      slider_(new Slider(tr("%1 level").arg(soundName(sound)))),
      level_(new Label({Theme::Type::caption, Theme::Color::secondary})) {
    setAttribute(Qt::WA_Hover);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(8);
    row->addWidget(toggle_);
    row->addWidget(slider_, 1);
    level_->setFixedWidth(levelWidth);
    level_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    row->addWidget(level_);
    slider_->installEventFilter(this);
    connect(toggle_, &QAbstractButton::clicked, this, &SoundRow::switched);
    connect(slider_, &Slider::moved, this,
            [this](int percent) { Q_EMIT levelChosen(percent / 100.0); });
    connect(slider_, &QAbstractSlider::valueChanged, this, &SoundRow::refreshLevel);
}

void SoundRow::show(const SoundMix& mix, Theme::Color accent) {
    const bool isOn = mix.on.contains(sound_);
    toggle_->setChecked(isOn);
    toggle_->setAccent(accent);
    slider_->setAccent(accent);
    slider_->setQuiet(!isOn);
    slider_->setLevel(static_cast<int>(std::lround(100 * levelOf(mix, sound_))));
    refreshLevel();
}

bool SoundRow::event(QEvent* event) {
    const bool result = QWidget::event(event);
    if (event->type() == QEvent::HoverEnter || event->type() == QEvent::HoverLeave) refreshLevel();
    return result;
}

bool SoundRow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut)
        QMetaObject::invokeMethod(this, &SoundRow::refreshLevel, Qt::QueuedConnection);
    return QWidget::eventFilter(watched, event);
}

void SoundRow::refreshLevel() {
    const bool isShown = underMouse() || slider_->hasFocus() || slider_->isSliderDown();
    level_->setText(isShown ? tr("%1 %").arg(slider_->value()) : QString());
}

}  // namespace tendel

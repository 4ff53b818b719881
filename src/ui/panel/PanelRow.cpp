#include "ui/panel/PanelRow.h"

#include "ui/theme/Icons.h"
#include "ui/theme/TabularText.h"

namespace tendel {

namespace {
constexpr int edge = 14;
constexpr int symbolSize = 18;
constexpr int gap = 10;
constexpr int chevronSize = 16;
}  // namespace

PanelRow::PanelRow(std::string symbol, const QString& text, QWidget* parent)
    : PaintedButton(parent), symbol_(std::move(symbol)) {
    setText(text);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

void PanelRow::setSymbolColor(Theme::Color color) {
    color_ = color;
    update();
}

void PanelRow::setNote(const QString& note) {
    note_ = note;
    setAccessibleDescription(note);
    update();
}

void PanelRow::setDisclosure(Disclosure disclosure) {
    disclosure_ = disclosure;
    setAccessibleDescription(disclosure == Disclosure::open     ? tr("Open")
                             : disclosure == Disclosure::closed ? tr("Closed")
                                                                : QString());
    update();
}

QSize PanelRow::sizeHint() const {
    return {160, height};
}

void PanelRow::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0, 1, 0, -1);
    const double radius = Theme::controlRadius + 2;
    QColor fill = theme.color(Theme::Color::text);
    fill.setAlphaF(isDown() ? 0.12F : isHovered() ? 0.07F : 0.0F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(box, radius, radius);
    // Rows stand without a gap: the ring goes inside.
    if (showsFocus()) drawFocusRing(painter, box.adjusted(3, 3, -3, -3), radius - 3);

    QRectF symbol(edge, 0, symbolSize, symbolSize);
    symbol.moveCenter({symbol.center().x(), box.center().y()});
    if (!symbol_.empty()) icons::draw(painter, symbol_, symbol, theme.color(color_));
    QRectF words(symbol.right() + gap, box.top(), 0, box.height());
    words.setRight(width() - edge);
    painter.setFont(theme.font(Theme::Type::body));
    if (disclosure_ != Disclosure::none) {
        QRectF chevron(words.right() - chevronSize + 2, 0, chevronSize, chevronSize);
        chevron.moveCenter({chevron.center().x(), box.center().y()});
        const bool isOpen = disclosure_ == Disclosure::open;
        icons::draw(painter, isOpen ? "chevron.up" : "chevron.down", chevron,
                    theme.color(Theme::Color::secondary));
        words.setRight(chevron.left() - gap);
    }
    if (!note_.isEmpty()) {
        painter.setPen(theme.color(Theme::Color::secondary));
        drawTabular(painter, words, Qt::AlignVCenter | Qt::AlignRight, note_);
        words.setRight(words.right() - tabularWidth(painter.font(), note_) - gap);
    }
    painter.setPen(theme.color(Theme::Color::text));
    painter.drawText(
        words, Qt::AlignVCenter | Qt::AlignLeft,
        painter.fontMetrics().elidedText(text(), Qt::ElideRight, static_cast<int>(words.width())));
}

}  // namespace tendel

#include "ui/stats/StatsTiles.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>

#include "ui/theme/Icons.h"
#include "ui/theme/PaintedButton.h"
#include "ui/theme/TabularText.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

constexpr int gap = 8;
constexpr int padding = 12;
constexpr int symbolSize = 16;
constexpr int captionHeight = 18;
constexpr int figureHeight = 38;
constexpr int noteHeight = 15;
// The row stands as far out as its cards' focus rings reach.
constexpr int margin = focusMargin;

struct Look {
    std::string_view symbol;
    Theme::Color color;
};
constexpr std::array<Look, 4> looks{{{"checkmark.circle", Theme::Color::good},
                                     {"flame", Theme::Color::snoozed},
                                     {"target", Theme::Color::focusAccent},
                                     {"bell.slash", Theme::Color::missed}}};

bool isUnit(const QString& word) {
    return !word.isEmpty() && word.front().isLetter();
}

QFont figureFont(double scale) {
    QFont font = Theme::instance().font(Theme::Type::figure, true);
    font.setPixelSize(static_cast<int>(std::floor(font.pixelSize() * scale)));
    return font;
}

QFont unitFont(double scale) {
    return Theme::instance().font(scale < 0.8 ? Theme::Type::caption : Theme::Type::body, true);
}

constexpr double unitGap = 3;
constexpr double wordGap = 5;

// Runs `place` with each word of a figure and where it begins; answers the width of all.
template <class Place>
double layOut(const QString& figure, double scale, Place place) {
    double x = 0;
    for (const QString& word : figure.split(u' ')) {
        if (x > 0) x += isUnit(word) ? unitGap : wordGap;
        const QFont font = isUnit(word) ? unitFont(scale) : figureFont(scale);
        place(word, font, x);
        x += tabularWidth(font, word);
    }
    return x;
}

double figureWidth(const QString& figure, double scale) {
    return layOut(figure, scale, [](const QString&, const QFont&, double) {});
}

}  // namespace

StatsTiles::StatsTiles(QWidget* parent)
    : MarkedView(tr("Figures"), parent), callout_(new Callout(this)) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    connect(this, &MarkedView::currentChanged, this, &StatsTiles::explain);
    connect(&Theme::instance(), &Theme::changed, this, &StatsTiles::arrange);
}

void StatsTiles::setTiles(std::vector<StatsSentences::Tile> tiles) {
    tiles_ = std::move(tiles);
    arrange();
}

QSize StatsTiles::sizeHint() const {
    return {600, 2 * margin + 2 * padding + captionHeight + figureHeight + noteLines_ * noteHeight};
}

QRectF StatsTiles::box(int index) const {
    const auto count = static_cast<double>(tiles_.size());
    const double inner = width() - 2 * margin;
    const double each = (inner - gap * (count - 1)) / count;
    return {margin + index * (each + gap), margin, each, height() - 2.0 * margin};
}

double StatsTiles::textWidth() const {
    return box(0).width() - 2 * padding;
}

void StatsTiles::arrange() {
    if (tiles_.empty()) return;
    figureScale_ = 1;
    noteLines_ = 1;
    const QFontMetrics metrics(Theme::instance().font(Theme::Type::caption));
    for (const StatsSentences::Tile& tile : tiles_) {
        constexpr double least = 0.5;
        while (figureScale_ > least && figureWidth(tile.figure, figureScale_) > textWidth())
            figureScale_ -= 0.05;
        if (metrics.horizontalAdvance(tile.note) > textWidth()) noteLines_ = 2;
    }
    updateGeometry();
    std::vector<Mark> marks;
    for (int i = 0; i < std::ssize(tiles_); ++i)
        marks.push_back({box(i), tiles_[static_cast<std::size_t>(i)].sentence});
    setMarks(std::move(marks), 0);
    update();
}

void StatsTiles::resizeEvent(QResizeEvent*) {
    arrange();
}

void StatsTiles::explain() {
    if (!current()) return callout_->hide();
    const StatsSentences::Tile& tile = tiles_[static_cast<std::size_t>(*current())];
    callout_->showAt(box(*current()), tile.caption, {tile.explanation});
}

void StatsTiles::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    for (int i = 0; i < std::ssize(tiles_); ++i)
        drawTile(painter, i);
}

void StatsTiles::drawTile(QPainter& painter, int index) const {
    const Theme& theme = Theme::instance();
    const StatsSentences::Tile& tile = tiles_[static_cast<std::size_t>(index)];
    const QRectF card = box(index);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(theme.color(Theme::Color::surface));
    painter.drawRoundedRect(card, Theme::cardRadius, Theme::cardRadius);
    drawHairline(painter, card, Theme::cardRadius, theme.color(Theme::Color::hairline));
    if (showsFocus() && walked() == index) drawFocusRing(painter, card, Theme::cardRadius);

    QRectF line = card.adjusted(padding, padding, -padding, -padding);
    const Look& look = looks[static_cast<std::size_t>(index) % looks.size()];
    icons::draw(painter, look.symbol,
                QRectF(line.left(), line.top() + (captionHeight - symbolSize) / 2.0, symbolSize,
                       symbolSize),
                theme.color(look.color));
    painter.setFont(theme.font(Theme::Type::body));
    painter.setPen(theme.color(Theme::Color::text));
    QRectF caption = line.adjusted(symbolSize + 6, 0, 0, 0);
    caption.setHeight(captionHeight);
    const double captionWidth = painter.fontMetrics().horizontalAdvance(tile.caption);
    painter.drawText(caption, Qt::AlignVCenter | Qt::AlignLeft,
                     painter.fontMetrics().elidedText(tile.caption, Qt::ElideRight,
                                                      static_cast<int>(caption.width())));
    constexpr double hintSize = 14;
    if (tile.hasRule && captionWidth + 4 + hintSize <= caption.width())
        icons::draw(painter, "info.circle",
                    QRectF(line.right() - hintSize, line.top() + (captionHeight - hintSize) / 2,
                           hintSize, hintSize),
                    theme.color(Theme::Color::faint));

    line.setTop(line.top() + captionHeight);
    const double baseline = line.top() + figureHeight - 9;
    layOut(tile.figure, figureScale_, [&](const QString& word, const QFont& font, double x) {
        painter.setFont(font);
        painter.setPen(theme.color(isUnit(word) ? Theme::Color::secondary : Theme::Color::text));
        const QFontMetricsF metrics(font);
        drawTabular(
            painter,
            QRectF(line.left() + x, baseline - metrics.ascent(), line.width(), metrics.height()),
            Qt::AlignLeft | Qt::AlignTop, word);
    });

    line.setTop(line.top() + figureHeight);
    painter.setFont(theme.font(Theme::Type::caption));
    painter.setPen(theme.color(Theme::Color::secondary));
    painter.drawText(line, Qt::TextWordWrap | Qt::AlignLeft | Qt::AlignTop, tile.note);
}

}  // namespace tendel

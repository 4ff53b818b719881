#include "ui/stats/StatsGhost.h"

#include <QPainter>
#include <QVBoxLayout>

#include <array>

#include "ui/stats/ChartFill.h"
#include "ui/theme/Label.h"
#include "ui/theme/PaintedButton.h"

namespace tendel {

namespace {

constexpr int tileHeight = 84;
constexpr int tileGap = 8;
constexpr int tileCount = 4;
constexpr int cardGap = 12;
constexpr int chartHeight = 190;
constexpr int wordsGap = 20;
constexpr double paleness = 0.3;

struct Day {
    double done;  // of the highest day
    double missed;
    double snoozed;
};
constexpr std::array<Day, 7> days{{{0.42, 0.16, 0.08},
                                   {0.5, 0.1, 0},
                                   {0.36, 0.2, 0.1},
                                   {0.62, 0.08, 0.08},
                                   {0.56, 0.14, 0},
                                   {0.2, 0, 0.06},
                                   {0.7, 0.1, 0.1}}};

}  // namespace

StatsGhost::StatsGhost(QWidget* parent) : QWidget(parent), words_(new QWidget(this)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, tileHeight + cardGap + chartHeight + wordsGap, 0, 0);
    auto* words = new QVBoxLayout(words_);
    words->setContentsMargins(0, 0, 0, 0);
    words->setSpacing(4);
    auto* title =
        new Label({Theme::Type::title, Theme::Color::text, true}, tr("Your days will appear here"));
    auto* text = new Label({Theme::Type::body, Theme::Color::secondary},
                           tr("Answer an alert or finish a focus block, and counting begins."));
    for (Label* each : {title, text}) {
        each->setAlignment(Qt::AlignHCenter);
        each->setWordWrap(true);
        words->addWidget(each);
    }
    column->addWidget(words_);
    column->addStretch();
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
}

QRectF StatsGhost::chartCard() const {
    return {0, tileHeight + cardGap, static_cast<double>(width()), chartHeight};
}

void StatsGhost::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor pale = theme.color(Theme::Color::text);
    pale.setAlphaF(0.07F);
    const auto card = [&](const QRectF& box) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(
            blended(theme.color(Theme::Color::surface), theme.color(Theme::Color::window), 0.6));
        painter.drawRoundedRect(box, Theme::cardRadius, Theme::cardRadius);
        drawHairline(painter, box, Theme::cardRadius, theme.color(Theme::Color::hairline));
    };
    const auto word = [&](const QRectF& box) {
        painter.setPen(Qt::NoPen);
        painter.setBrush(pale);
        painter.drawRoundedRect(box, box.height() / 2, box.height() / 2);
    };
    const double tileWidth = (width() - tileGap * (tileCount - 1.0)) / tileCount;
    for (int i = 0; i < tileCount; ++i) {
        const QRectF tile(i * (tileWidth + tileGap), 0, tileWidth, tileHeight);
        card(tile);
        word(QRectF(tile.left() + 12, 14, tileWidth * 0.4, 8));
        word(QRectF(tile.left() + 12, 32, tileWidth * 0.34, 18));
        word(QRectF(tile.left() + 12, 60, tileWidth * 0.55, 8));
    }

    const QRectF chart = chartCard();
    card(chart);
    const QRectF plot = chart.adjusted(24, 20, -24, -24);
    const double slot = plot.width() / static_cast<double>(days.size());
    const double barWidth = std::min(28.0, slot * 0.5);
    for (std::size_t i = 0; i < days.size(); ++i) {
        double bottom = plot.bottom();
        const double left = plot.left() + slot * (static_cast<double>(i) + 0.5) - barWidth / 2;
        for (const auto& [share, fill] : {std::pair(days[i].done, ChartFill::done),
                                          std::pair(days[i].missed, ChartFill::missed),
                                          std::pair(days[i].snoozed, ChartFill::snoozed)}) {
            const double height = plot.height() * share;
            drawBar(painter, QRectF(left, bottom - height, barWidth, height - 1), fill, paleness);
            bottom -= height;
        }
    }
    painter.fillRect(QRectF(plot.left(), plot.bottom(), plot.width(), 1), pale);
}

}  // namespace tendel

#include "ui/tray/TrayImage.h"

#include <QFontMetricsF>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QStringList>

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

// Stands out by 3 to 1 from white and from black panels.
constexpr QColor signColor(0x86, 0x86, 0x8B);
// White text on it has 5 to 1.
constexpr QColor badgeColor(0x6E, 0x6E, 0x73);

constexpr int smallestText = 8;  // pixels; below nobody can read it

// The alert hanging from the edge of the screen; all measures are for an icon of 24 pixels.
QPainterPath alert(double left, double right, double bottom, double radius) {
    QPainterPath shape(QPointF(0, 1));
    shape.lineTo(24, 1);
    shape.lineTo(24, 3);
    shape.quadTo(right, 3, right, 6);
    shape.lineTo(right, bottom - radius);
    shape.quadTo(right, bottom, right - radius, bottom);
    shape.lineTo(left + radius, bottom);
    shape.quadTo(left, bottom, left, bottom - radius);
    shape.lineTo(left, 6);
    shape.quadTo(left, 3, 0, 3);
    shape.closeSubpath();
    return shape;
}

// With an eye in it.
QPainterPath ownSign() {
    QPainterPath sign = alert(5, 19, 21, 7);
    sign.addEllipse(QPointF(12, 13), 3, 3);  // a hole, by the odd-even rule
    return sign;
}

// Text in a box of the icon, one line for hours and one for minutes.
struct Fitting {
    QStringList lines;
    QFont font;
    double lineHeight = 0;
};

// The largest font with which the text fits, if it can be read.
std::optional<Fitting> fitting(const QString& text, const QSizeF& box) {
    if (text.isEmpty()) return std::nullopt;
    Fitting found{.lines = text.split(u' '),
                  .font = Theme::instance().font(Theme::Type::caption, true)};
    found.font.setHintingPreference(QFont::PreferNoHinting);
    // Digits have no descenders: their height is what must fit.
    for (int pixels = static_cast<int>(box.height() * 1.3); pixels >= smallestText; --pixels) {
        found.font.setPixelSize(pixels);
        const QFontMetricsF metrics(found.font);
        found.lineHeight = metrics.capHeight() * 1.15;
        const bool fits = std::ranges::all_of(found.lines, [&](const QString& line) {
            return metrics.horizontalAdvance(line) <= box.width();
        });
        if (fits && found.lineHeight * static_cast<double>(found.lines.size()) <= box.height())
            return found;
    }
    return std::nullopt;
}

void draw(QPainter& painter, const Fitting& text, const QRectF& box) {
    const QFontMetricsF metrics(text.font);
    painter.setFont(text.font);
    painter.setPen(Qt::white);
    const double height = text.lineHeight * static_cast<double>(text.lines.size() - 1);
    double baseline = box.center().y() - height / 2 + metrics.capHeight() / 2;
    for (const QString& line : text.lines) {
        const double x = box.center().x() - metrics.horizontalAdvance(line) / 2;
        painter.drawText(QPointF(x, baseline), line);
        baseline += text.lineHeight;
    }
}

class TrayIconEngine : public QIconEngine {
public:
    explicit TrayIconEngine(TrayImage image) : image_(std::move(image)) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        const double ratio = painter->device()->devicePixelRatioF();
        const int size = std::min(rect.width(), rect.height());
        QImage image = image_.drawn(qRound(size * ratio));
        image.setDevicePixelRatio(ratio);
        painter->drawImage(rect.center() - QPoint((size - 1) / 2, (size - 1) / 2), image);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode, QIcon::State) override {
        return QPixmap::fromImage(image_.drawn(std::min(size.width(), size.height())));
    }
    QIconEngine* clone() const override { return new TrayIconEngine(image_); }

private:
    TrayImage image_;
};

}  // namespace

QImage TrayImage::drawn(int size) const {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    const double unit = size / 24.0;

    const bool isAlone = symbol.empty();
    const QRectF timeBox(unit, isAlone ? 4 * unit : 12.5 * unit, size - 2 * unit,
                         isAlone ? 18 * unit : 10 * unit);
    const auto text = fitting(time, timeBox.size());
    if (isAlone) {
        const QPainterPath shape = text ? alert(0.5, 23.5, 23, 6) : ownSign();
        painter.save();
        painter.scale(unit, unit);
        painter.fillPath(shape, text ? badgeColor : signColor);
        painter.restore();
    } else if (text) {
        // The bars in a circle would run into one another there.
        const std::string_view above =
            symbol == "pause.circle" ? "pause" : std::string_view(symbol);
        icons::draw(painter, above, QRectF(6.5 * unit, 0, 11 * unit, 11 * unit), signColor);
        painter.setBrush(badgeColor);
        painter.setPen(Qt::NoPen);
        painter.drawRoundedRect(QRectF(0, 12 * unit, size, 12 * unit), 4 * unit, 4 * unit);
    } else {
        icons::draw(painter, symbol, QRectF(0, 0, size, size), signColor);
    }
    if (text) draw(painter, *text, timeBox);
    return image;
}

QIcon TrayImage::icon() const {
    return QIcon(new TrayIconEngine(*this));
}

}  // namespace tendel

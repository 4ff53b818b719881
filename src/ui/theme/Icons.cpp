#include "ui/theme/Icons.h"

#include <QPolygonF>
#include <QRawFont>
#include <QStandardPaths>

#include <algorithm>
#include <array>
#include <string>
#include <unordered_map>

#include "ui/theme/QtText.h"

namespace tendel::icons {

namespace {

enum class Offer { toPerson, no };

struct Symbol {
    std::string_view name;
    char32_t codePoint;
    const char* spoken;
    Offer offer = Offer::no;
};

// The code points are those of Material Icons. What a person can choose comes first, by subject.
constexpr Symbol symbols[] = {
    {"bell", 0xe7f4, "Bell", Offer::toPerson},
    {"eye", 0xe8f4, "Eye", Offer::toPerson},
    {"eye.slash", 0xe8f5, "Closed eye", Offer::toPerson},
    {"scope", 0xe3b4, "Point of focus", Offer::toPerson},
    {"hand.raised", 0xe769, "Raised hand", Offer::toPerson},
    {"hand.wave", 0xe766, "Waving hand", Offer::toPerson},
    {"person.crop.circle", 0xe853, "Head", Offer::toPerson},
    {"face.smiling", 0xe7f2, "Smile", Offer::toPerson},
    {"arrow.clockwise.circle", 0xe5d5, "Circling arrow", Offer::toPerson},
    {"figure.stand", 0xe4eb, "Person standing", Offer::toPerson},
    {"figure.arms.open", 0xe92c, "Person with open arms", Offer::toPerson},
    {"figure.walk", 0xe536, "Person walking", Offer::toPerson},
    {"figure.run", 0xe566, "Person running", Offer::toPerson},
    {"figure.flexibility", 0xebc4, "Person stretching", Offer::toPerson},
    {"figure.cooldown", 0xea1d, "Person reaching out", Offer::toPerson},
    {"figure.mind.and.body", 0xea78, "Person meditating", Offer::toPerson},
    {"figure.step.training", 0xf1a9, "Stairs", Offer::toPerson},
    {"figure.strengthtraining.functional", 0xeb43, "Dumbbell", Offer::toPerson},
    {"bicycle", 0xeb29, "Bicycle", Offer::toPerson},
    {"arrow.up.circle", 0xf182, "Upward arrow", Offer::toPerson},
    {"wind", 0xefd8, "Wind", Offer::toPerson},
    {"leaf", 0xea35, "Leaf", Offer::toPerson},
    {"sun.max", 0xe518, "Sun", Offer::toPerson},
    {"moon", 0xef44, "Moon", Offer::toPerson},
    {"drop", 0xe798, "Drop of water", Offer::toPerson},
    {"cup.and.saucer", 0xefef, "Cup", Offer::toPerson},
    {"fork.knife", 0xe56c, "Fork and knife", Offer::toPerson},
    {"carrot", 0xeaac, "Snack", Offer::toPerson},
    {"pills", 0xf033, "Medicine", Offer::toPerson},
    {"chair", 0xefed, "Chair", Offer::toPerson},
    {"bed.double", 0xefdf, "Bed", Offer::toPerson},
    {"square", 0xe3c6, "Square", Offer::toPerson},
    {"checklist", 0xe6b1, "Checklist", Offer::toPerson},
    {"list.bullet", 0xe241, "List", Offer::toPerson},
    {"envelope", 0xe158, "Envelope", Offer::toPerson},
    {"phone", 0xe0b0, "Phone", Offer::toPerson},
    {"bubble.left", 0xe0b7, "Speech bubble", Offer::toPerson},
    {"calendar", 0xe878, "Calendar", Offer::toPerson},
    {"macwindow", 0xe069, "Window", Offer::toPerson},
    {"laptopcomputer", 0xe31e, "Computer", Offer::toPerson},
    {"tray", 0xe156, "Tray", Offer::toPerson},
    {"lightbulb", 0xe0f0, "Light bulb", Offer::toPerson},
    {"book", 0xea19, "Book", Offer::toPerson},
    {"music.note", 0xe405, "Music", Offer::toPerson},
    {"house", 0xe88a, "House", Offer::toPerson},
    {"cart", 0xe8cc, "Shopping cart", Offer::toPerson},
    {"pawprint", 0xe91d, "Paw", Offer::toPerson},
    {"heart", 0xe87d, "Heart", Offer::toPerson},
    {"star", 0xe838, "Star", Offer::toPerson},

    {"bell.slash", 0xe7f6, "Silent bell"},
    {"briefcase", 0xe8f9, "Briefcase"},
    {"chart.bar", 0xe26b, "Bar chart"},
    {"check", 0xe5ca, "Check"},
    {"checkmark", 0xe5ca, "Check"},
    {"checkmark.circle", 0xe86c, "Check"},
    {"chevron.down", 0xe5cf, "Down"},
    {"chevron.left", 0xe5cb, "Left"},
    {"chevron.right", 0xe5cc, "Right"},
    {"chevron.up", 0xe5ce, "Up"},
    {"clock", 0xe8b5, "Clock"},
    {"copy", 0xe14d, "Copy"},
    {"ellipsis", 0xe5d3, "More"},
    {"exclamationmark.triangle", 0xe002, "Warning"},
    {"fan", 0xec0c, "Fan"},
    {"fireplace", 0xea43, "Fireplace"},
    {"flame", 0xef55, "Flame"},
    {"forward.end", 0xe044, "Skip"},
    {"headphones", 0xf01f, "Listen"},
    {"info.circle", 0xe88e, "Information"},
    {"magnifyingglass", 0xe8b6, "Search"},
    {"minus", 0xe15b, "Less"},
    {"pause", 0xe034, "Pause"},
    {"pause.circle", 0xe1a2, "Pause"},
    {"pause.fill", 0xe034, "Pause"},
    {"pencil", 0xe3c9, "Edit"},
    {"person", 0xe7fd, "Person"},
    {"play", 0xe037, "Start"},
    {"plus", 0xe145, "Add"},
    {"presentation", 0xe41b, "Presentation"},
    {"sparkles", 0xe65f, "Automatic"},
    {"speaker", 0xe050, "Sound on"},
    {"speaker.slash", 0xe04f, "Sound off"},
    {"stop", 0xe047, "Stop"},
    {"target", 0xe39e, "Target"},
    {"timer", 0xe425, "Timer"},
    {"trash", 0xe872, "Delete"},
    {"video", 0xe04b, "Camera"},
    {"waveform", 0xe1b8, "Deep noise"},
    {"waveform.dots", 0xe3a5, "Soft noise"},
    {"waveform.grain", 0xe3ea, "Bright noise"},
    {"waves", 0xe176, "Waves"},
    {"xmark", 0xe5cd, "Close"},
    {"zzz", 0xe046, "Snooze"},
};

// In the order of ExerciseAnimation.
constexpr std::array<std::string_view, exerciseAnimationNames.size()> exerciseSymbols{
    "eye",
    "arrow.clockwise.circle",
    "figure.arms.open",
    "person.crop.circle",
    "figure.cooldown",
    "hand.wave",
    "figure.flexibility",
    "figure.stand",
    "figure.walk",
    "figure.step.training",
    "figure.strengthtraining.functional",
    "wind",
};

const Symbol* find(std::string_view name) {
    const auto* found = std::ranges::find(symbols, name, &Symbol::name);
    return found == std::end(symbols) ? nullptr : found;
}

// Outlines are read large, so that the font's hinting does not bend them.
constexpr double readingSize = 480;

const QRawFont& iconFont() {
    static const QRawFont font = [] {
        const QString file = QStandardPaths::locate(
            QStandardPaths::GenericDataLocation,
            "fonts/truetype/material-design-icons-iconfont/MaterialIcons-Regular.ttf");
        return file.isEmpty() ? QRawFont() : QRawFont(file, readingSize, QFont::PreferNoHinting);
    }();
    return font;
}

QPainterPath stroked(std::initializer_list<QPolygonF> lines) {
    QPainterPath path;
    for (const QPolygonF& line : lines)
        path.addPolygon(line);
    QPainterPathStroker stroker;
    stroker.setWidth(0.1);
    stroker.setCapStyle(Qt::RoundCap);
    stroker.setJoinStyle(Qt::RoundJoin);
    return stroker.createStroke(path);
}

// In a box from (0, 0) to (1, 1), where the font is missing: enough to tell buttons apart.
QPainterPath simpleShape(std::string_view name) {
    if (name == "plus")
        return stroked({QPolygonF({{0.5, 0.2}, {0.5, 0.8}}), QPolygonF({{0.2, 0.5}, {0.8, 0.5}})});
    if (name == "xmark")
        return stroked(
            {QPolygonF({{0.25, 0.25}, {0.75, 0.75}}), QPolygonF({{0.75, 0.25}, {0.25, 0.75}})});
    if (name.starts_with("check"))
        return stroked({QPolygonF({{0.2, 0.55}, {0.42, 0.75}, {0.8, 0.28}})});
    if (name == "chevron.down")
        return stroked({QPolygonF({{0.25, 0.4}, {0.5, 0.65}, {0.75, 0.4}})});
    if (name == "pencil")
        return stroked({QPolygonF(
            {{0.2, 0.8}, {0.25, 0.6}, {0.7, 0.15}, {0.85, 0.3}, {0.4, 0.75}, {0.2, 0.8}})});
    if (name == "trash")
        return stroked({QPolygonF({{0.2, 0.25}, {0.8, 0.25}}),
                        QPolygonF({{0.27, 0.25}, {0.32, 0.85}, {0.68, 0.85}, {0.73, 0.25}})});
    if (name == "copy")
        return stroked(
            {QPolygonF({{0.35, 0.3}, {0.8, 0.3}, {0.8, 0.85}, {0.35, 0.85}, {0.35, 0.3}}),
             QPolygonF({{0.2, 0.7}, {0.2, 0.15}, {0.65, 0.15}})});
    QPainterPath path;
    if (name == "ellipsis") {
        for (const double x : {0.2, 0.5, 0.8})
            path.addEllipse(QPointF(x, 0.5), 0.08, 0.08);
        return path;
    }
    path.moveTo(0.2, 0.72);
    path.cubicTo(0.34, 0.6, 0.2, 0.18, 0.5, 0.18);
    path.cubicTo(0.8, 0.18, 0.66, 0.6, 0.8, 0.72);
    path.closeSubpath();
    path.addEllipse(QPointF(0.5, 0.8), 0.08, 0.08);
    return path;
}

// The centre of the filled area; holes run the other way round and so count negative.
QPointF centroid(const QPainterPath& path) {
    double area = 0;
    QPointF sum;
    for (const QPolygonF& polygon : path.toSubpathPolygons()) {
        for (qsizetype i = 0; i + 1 < polygon.size(); ++i) {
            const QPointF a = polygon[i];
            const QPointF b = polygon[i + 1];
            const double cross = a.x() * b.y() - b.x() * a.y();
            area += cross;
            sum += (a + b) * cross;
        }
    }
    return qFuzzyIsNull(area) ? path.boundingRect().center() : sum / (3 * area);
}

// Moves an outline in the unit box so that it looks centred: half by its bounds, half by its mass,
// and never out of the box.
QPainterPath opticallyCentred(const QPainterPath& path) {
    const QRectF bounds = path.boundingRect();
    const QPointF centre = (bounds.center() + centroid(path)) / 2;
    const double dx = std::clamp(0.5 - centre.x(), -bounds.left(), 1 - bounds.right());
    const double dy = std::clamp(0.5 - centre.y(), -bounds.top(), 1 - bounds.bottom());
    return path.translated(dx, dy);
}

QPainterPath unitPath(const Symbol& symbol) {
    const QRawFont& font = iconFont();
    if (!font.isValid()) return simpleShape(symbol.name);
    const auto glyphs = font.glyphIndexesForString(QString::fromUcs4(&symbol.codePoint, 1));
    if (glyphs.isEmpty() || glyphs.first() == 0) return simpleShape(symbol.name);
    QPainterPath outline = font.pathForGlyph(glyphs.first());
    if (outline.isEmpty()) return simpleShape(symbol.name);
    outline.setFillRule(Qt::WindingFill);
    QTransform toUnit;
    toUnit.scale(1 / readingSize, 1 / readingSize);
    // The glyph's box is the em square, which stands on the font's lower line.
    toUnit.translate(0, font.ascent());
    outline = toUnit.map(outline);
    const QRectF bounds = outline.boundingRect();
    if (bounds.width() > 1 || bounds.height() > 1) {
        const double scale = 1 / std::max(bounds.width(), bounds.height());
        outline = QTransform::fromScale(scale, scale).map(outline);
    }
    return opticallyCentred(outline);
}

}  // namespace

QPainterPath path(std::string_view symbol, const QRectF& box) {
    static std::unordered_map<std::string_view, QPainterPath> outlines;
    const Symbol* found = find(symbol);
    if (!found) found = &symbols[0];
    auto outline = outlines.find(found->name);
    if (outline == outlines.end()) outline = outlines.emplace(found->name, unitPath(*found)).first;
    QTransform place;
    place.translate(box.left(), box.top());
    place.scale(box.width(), box.height());
    return place.map(outline->second);
}

bool isKnown(std::string_view symbol) {
    return find(symbol) != nullptr;
}

std::string_view symbolOf(ExerciseAnimation animation) {
    return exerciseSymbols[static_cast<std::size_t>(animation)];
}

void draw(QPainter& painter, std::string_view symbol, const QRectF& box, const QColor& color) {
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path(symbol, box), color);
    painter.restore();
}

QIcon icon(std::string_view symbol, const QColor& color, int size) {
    QIcon icon;
    for (const int ratio : {1, 2, 3}) {
        QPixmap pixmap(size * ratio, size * ratio);
        pixmap.setDevicePixelRatio(ratio);
        pixmap.fill(Qt::transparent);
        QPainter painter(&pixmap);
        draw(painter, symbol, QRectF(0, 0, size, size), color);
        painter.end();
        icon.addPixmap(pixmap);
    }
    return icon;
}

const QStringList& choices() {
    static const QStringList offered = [] {
        QStringList names;
        for (const Symbol& symbol : symbols)
            if (symbol.offer == Offer::toPerson) names << toQString(symbol.name);
        return names;
    }();
    return offered;
}

QString spokenName(std::string_view symbol) {
    if (const Symbol* found = find(symbol)) return QString::fromUtf8(found->spoken);
    return toQString(symbol);
}

}  // namespace tendel::icons

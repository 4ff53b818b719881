#include "ui/theme/Theme.h"

#include <QApplication>
#include <QFontDatabase>
#include <QFontInfo>
#include <QPalette>

#include <array>
#include <cmath>

namespace tendel {

namespace {

struct Tone {
    QRgb light;
    QRgb dark;
};

// In the order of Theme::Color.
constexpr std::array<Tone, 13> tones{{
    {0xFFF6F5F2, 0xFF1C1C1E},
    {0xFFFFFFFF, 0xFF2A2A2D},
    {0xFFECEAE5, 0xFF232326},
    {0xFF1D1D1F, 0xFFF2F2F4},
    {0xFF66666B, 0xFFA5A5AB},
    {0xFFA3A3A8, 0xFF6E6E74},
    {0x14000000, 0x1AFFFFFF},
    {0xFF2F6FED, 0xFF6C9BFF},
    {0xFF8A4FD3, 0xFFB48CF2},
    {0xFFC2461F, 0xFFFF8A5C},
    {0xFF1F7D54, 0xFF57C794},
    {0xFFBD4534, 0xFFF07F6E},
    {0xFFB08223, 0xFFE2B65A},
}};
static_assert(tones.size() == static_cast<std::size_t>(Theme::Color::snoozed) + 1);

double luminance(const QColor& color) {
    const auto linear = [](double channel) {
        return channel <= 0.04045 ? channel / 12.92 : std::pow((channel + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

// The system's font where it was chosen by somebody. DejaVu Sans is what a computer has on which
// nobody chose; a family that was drawn for interfaces is then better, if there is one.
QString preferredFamily() {
    const QString given = QFontInfo(QFontDatabase::systemFont(QFontDatabase::GeneralFont)).family();
    if (given != QLatin1String("DejaVu Sans")) return given;
    for (const auto* family : {"Inter", "Cantarell", "Noto Sans", "Ubuntu"})
        if (QFontDatabase::hasFamily(QLatin1String(family))) return QLatin1String(family);
    return given;
}

}  // namespace

Theme& Theme::instance() {
    static Theme theme;
    return theme;
}

Theme::Theme() : family_(preferredFamily()) {
    const QPalette palette = QApplication::palette();
    if (luminance(palette.color(QPalette::Window)) < luminance(palette.color(QPalette::WindowText)))
        scheme_ = Scheme::dark;
    apply();
}

void Theme::setScheme(Scheme scheme) {
    if (scheme == scheme_) return;
    scheme_ = scheme;
    apply();
}

void Theme::setHighContrast(bool isHighContrast) {
    if (isHighContrast == isHighContrast_) return;
    isHighContrast_ = isHighContrast;
    apply();
}

void Theme::setFontFamily(const QString& family) {
    if (family == family_ || !QFontDatabase::hasFamily(family)) return;
    family_ = family;
    apply();
}

QColor Theme::color(Color role, Scheme scheme) {
    const Tone& tone = tones[static_cast<std::size_t>(role)];
    return QColor::fromRgba(scheme == Scheme::dark ? tone.dark : tone.light);
}

QColor Theme::color(Color role) const {
    if (isHighContrast_) {
        if (role == Color::secondary) role = Color::text;
        if (role == Color::faint) role = Color::secondary;
        if (role == Color::hairline) role = Color::secondary;
    }
    return color(role, scheme_);
}

QColor Theme::accent(ReminderKind kind, Scheme scheme) {
    return color(accentRole(kind), scheme);
}

QColor Theme::accent(ReminderKind kind) const {
    return accent(kind, scheme_);
}

QColor Theme::textOn(const QColor& background) {
    constexpr double readable = 4.5;  // WCAG 2.1, level AA
    const QColor white = Qt::white;
    const QColor black = color(Color::text, Scheme::light);
    if (contrast(white, background) >= readable) return white;
    return contrast(white, background) > contrast(black, background) ? white : black;
}

QFont Theme::font(Type type, bool isSemibold) const {
    QFont font(family_);
    font.setPixelSize(static_cast<int>(type));
    font.setWeight(isSemibold ? QFont::DemiBold : QFont::Normal);
    return font;
}

// What Qt draws itself (text fields, tooltips, menus) takes its colours from the palette.
void Theme::apply() {
    const QColor surface = color(Color::surface);
    const QColor text = color(Color::text);
    const QColor accent = color(Color::workAccent);
    QPalette palette;
    palette.setColor(QPalette::Window, color(Color::window));
    palette.setColor(QPalette::WindowText, text);
    palette.setColor(QPalette::Base, surface);
    palette.setColor(QPalette::AlternateBase, color(Color::sidebar));
    palette.setColor(QPalette::Text, text);
    palette.setColor(QPalette::PlaceholderText, color(Color::secondary));
    palette.setColor(QPalette::Button, surface);
    palette.setColor(QPalette::ButtonText, text);
    palette.setColor(QPalette::ToolTipBase, surface);
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::Highlight, accent);
    palette.setColor(QPalette::HighlightedText, textOn(accent));
    palette.setColor(QPalette::Link, accent);
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, color(Color::faint));
    QApplication::setPalette(palette);
    QApplication::setFont(font(Type::body));
    Q_EMIT changed();
}

double contrast(const QColor& a, const QColor& b) {
    const double first = luminance(a) + 0.05;
    const double second = luminance(b) + 0.05;
    return first > second ? first / second : second / first;
}

QColor blended(const QColor& top, const QColor& bottom, double opacity) {
    const auto mix = [opacity](int over, int under) {
        return static_cast<int>(std::lround(over * opacity + under * (1 - opacity)));
    };
    return QColor(mix(top.red(), bottom.red()), mix(top.green(), bottom.green()),
                  mix(top.blue(), bottom.blue()));
}

}  // namespace tendel

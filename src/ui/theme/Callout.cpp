#include "ui/theme/Callout.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

#include "ui/theme/PaintedButton.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

constexpr int mostTextWidth = 260;
constexpr int sidePadding = 12;
constexpr int topPadding = 8;
constexpr int lineGap = 2;
constexpr int distance = 6;  // between the card and what it speaks of
constexpr int windowEdge = 8;

QSize textSize(const QFont& font, const QString& text) {
    return QFontMetrics(font)
        .boundingRect(QRect(0, 0, mostTextWidth, 1000), Qt::TextWordWrap, text)
        .size();
}

QColor background() {
    const Theme& theme = Theme::instance();
    const QColor text = theme.color(Theme::Color::text);
    return theme.isDark() ? blended(text, theme.color(Theme::Color::surface), 0.14) : text;
}

}  // namespace

Callout::Callout(QWidget* of) : QWidget(of), of_(of) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setFocusPolicy(Qt::NoFocus);
    hide();
    // It moves into the window when it is shown.
    connect(of, &QObject::destroyed, this, [this] { delete this; });
    connect(&Theme::instance(), &Theme::changed, this, &QWidget::hide);
}

void Callout::showAt(const QRectF& anchor, const QString& title, const QStringList& lines) {
    title_ = title;
    lines_ = lines;
    QWidget* window = of_->window();
    if (parentWidget() != window) setParent(window);
    // Scrolled or hidden, what it speaks of is no longer where it was.
    for (QWidget* above = of_; above != window; above = above->parentWidget()) {
        above->removeEventFilter(this);
        above->installEventFilter(this);
    }

    QSize content = textSize(titleFont(), title_);
    for (const QString& line : lines_) {
        const QSize size = textSize(lineFont(), line);
        content = {std::max(content.width(), size.width()),
                   content.height() + lineGap + size.height()};
    }
    const QSize size = content + QSize(2 * sidePadding, 2 * topPadding);
    const QRect there(of_->mapTo(window, anchor.toAlignedRect().topLeft()),
                      anchor.toAlignedRect().size());
    const int most = window->width() - size.width() - windowEdge;
    const int left = std::max(windowEdge, std::min(there.center().x() - size.width() / 2, most));
    int top = there.top() - distance - size.height();
    if (top < windowEdge) top = there.bottom() + distance;
    setGeometry({QPoint(left, top), size});
    raise();
    show();
    update();
}

bool Callout::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Move || event->type() == QEvent::Hide) hide();
    return QWidget::eventFilter(watched, event);
}

QFont Callout::titleFont() {
    return Theme::instance().font(Theme::Type::body, true);
}

QFont Callout::lineFont() {
    return Theme::instance().font(Theme::Type::body);
}

void Callout::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(background());
    painter.drawRoundedRect(rect(), Theme::controlRadius, Theme::controlRadius);
    QRect box = rect().adjusted(sidePadding, topPadding, -sidePadding, 0);
    const auto write = [&](const QFont& font, const QString& text, const QColor& color) {
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(box, Qt::TextWordWrap, text);
        box.setTop(box.top() + textSize(font, text).height() + lineGap);
    };
    const QColor text = Theme::textOn(background());
    write(titleFont(), title_, text);
    for (const QString& line : lines_)
        write(lineFont(), line, blended(text, background(), 0.8));
}

}  // namespace tendel

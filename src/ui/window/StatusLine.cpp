#include "ui/window/StatusLine.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

#include "ui/theme/Accessible.h"
#include "ui/theme/Icons.h"
#include "ui/theme/Theme.h"
#include "ui/window/ReminderListPage.h"

namespace tendel {

namespace {

constexpr int lineHeight = 36;
constexpr int symbolSize = 16;
constexpr int gap = 8;

}  // namespace

std::string_view symbolOf(AlertHold::Reason reason) {
    switch (reason) {
        case AlertHold::Reason::pause:
            return "pause.circle";
        case AlertHold::Reason::away:
            return "moon";
        case AlertHold::Reason::call:
            return "phone";
        case AlertHold::Reason::presentation:
            return "presentation";
        case AlertHold::Reason::focus:
            break;
    }
    return "target";
}

StatusLine::StatusLine(QWidget* parent) : QWidget(parent) {
    tellAs<StatusLine, QAccessible::StatusBar>();
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    connect(&Theme::instance(), &Theme::changed, this, qOverload<>(&QWidget::update));
    hide();
}

void StatusLine::setStatus(std::string_view symbol, const QString& text, const QString& spoken) {
    if (symbol == symbol_ && text == text_ && spoken == accessibleName()) return;
    symbol_ = symbol;
    text_ = text;
    setVisible(!text.isEmpty());
    if (spoken != accessibleName()) setAccessibleName(spoken);  // told once it is there
    update();
}

QSize StatusLine::sizeHint() const {
    return {0, lineHeight};
}

// Under the left edge of the page's column.
QRect StatusLine::symbolBox() const {
    const int edge = ReminderListPage::leftOfColumn(width());
    return {edge, (height() - symbolSize) / 2, symbolSize, symbolSize};
}

QRect StatusLine::textBox() const {
    const int left = symbolBox().right() + 1 + gap;
    return {left, 0, std::max(0, width() - left - ReminderListPage::edge), height()};
}

QString StatusLine::elidedText() const {
    const QFontMetrics metrics(Theme::instance().font(Theme::Type::body));
    return metrics.elidedText(text_, Qt::ElideRight, textBox().width());
}

bool StatusLine::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    // Only where the line does not say all.
    if (elidedText() != text_)
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), text_, this, textBox());
    return true;
}

void StatusLine::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const double line = 1 / devicePixelRatioF();
    painter.fillRect(QRectF(0, 0, width(), line), theme.color(Theme::Color::hairline));
    icons::draw(painter, symbol_, symbolBox(), theme.color(Theme::Color::secondary));
    painter.setFont(theme.font(Theme::Type::body));
    painter.setPen(theme.color(Theme::Color::text));
    painter.drawText(textBox(), Qt::AlignVCenter | Qt::AlignLeft, elidedText());
}

}  // namespace tendel

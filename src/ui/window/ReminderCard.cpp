#include "ui/window/ReminderCard.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

#include <algorithm>
#include <cmath>

#include "library/ReminderDisplay.h"
#include "ui/theme/Button.h"
#include "ui/theme/QtText.h"
#include "ui/theme/Switch.h"
#include "ui/theme/SymbolCircle.h"
#include "ui/theme/Theme.h"
#include "ui/window/ReminderWords.h"

namespace tendel {

namespace {

constexpr int cardHeight = 72;
constexpr int edge = 16;
constexpr int circleSize = 40;
constexpr int gap = 12;
constexpr double offOpacity = 0.55;

QFont fontOf(Theme::Type type, bool isSemibold = false) {
    return Theme::instance().font(type, isSemibold);
}

QString repetition(const Reminder& reminder) {
    QString text = toQString(intervalText(reminder.intervalMinutes));
    if (reminder.durationSeconds)
        text += QStringLiteral(" · ") + toQString(lengthText(*reminder.durationSeconds));
    return text;
}

}  // namespace

ReminderCard::ReminderCard(Content content, QWidget* parent)
    : PaintedButton(parent), content_(std::move(content)), switch_(new Switch(tr("On"), this)) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    connect(this, &QAbstractButton::clicked, this, &ReminderCard::editRequested);
    connect(switch_, &QAbstractButton::clicked, this, &ReminderCard::switched);
    switch_->installEventFilter(this);
    adopt();
}

void ReminderCard::setContent(Content content) {
    // Also when nothing differs: a switch whose change was refused goes back.
    switch_->setChecked(content.reminder.isOn);
    if (content == content_) return;
    content_ = std::move(content);
    adopt();
}

void ReminderCard::adopt() {
    const Reminder& reminder = content_.reminder;
    const QString title = toQString(reminder.displayTitle());
    const QString state = reminder.isOn ? content_.status : tr("Off");
    setAccessibleName(title + QStringLiteral(", ") + state);
    setAccessibleDescription(detailsLine() + QStringLiteral(", ") + repetition(reminder));
    switch_->setChecked(reminder.isOn);
    switch_->setKind(reminder.kind());
    switch_->setAccessibleName(title + tr(" on"));
    for (std::size_t i = 0; actions_[0] && i < actions_.size(); ++i)
        actions_[i]->setAccessibleName(actions_[i]->toolTip() + u' ' + title);
    placeChildren();
    update();
}

QSize ReminderCard::sizeHint() const {
    return {400, cardHeight + 2 * focusMargin};
}

QSize ReminderCard::minimumSizeHint() const {
    return {240, cardHeight + 2 * focusMargin};
}

QString ReminderCard::detailsLine() const {
    return toQString(content_.reminder.displayDetails()).simplified();
}

ReminderCard::Columns ReminderCard::columns() const {
    const double left = shape().left() + edge + circleSize + gap;
    double right = switch_->geometry().left() + focusMargin - edge;
    if (areActionsShown_) right = actions_.front()->geometry().left() + focusMargin - gap;
    const double room = right - left;
    const QFontMetricsF body(fontOf(Theme::Type::body));
    const QFontMetricsF caption(fontOf(Theme::Type::caption));
    double wanted = caption.horizontalAdvance(repetition(content_.reminder));
    // The warning of a reminder that never fires is long and stands with the texts at the left.
    if (!content_.neverFires) wanted = std::max(wanted, body.horizontalAdvance(content_.status));
    double width = std::min(std::ceil(wanted) + 1, std::max(room * 0.46, 96.0));
    // The title before everything else.
    if (room - gap - width < 120 && areActionsShown_) width = -gap;
    return {QRectF(left, shape().top(), room - gap - width, shape().height()),
            QRectF(right - width, shape().top(), width, shape().height())};
}

void ReminderCard::makeActions() {
    const Reminder& reminder = content_.reminder;
    actions_ = {new IconButton("pencil", tr("Edit"), this),
                new IconButton("copy", tr("Duplicate"), this),
                new IconButton("trash", tr("Delete"), this)};
    connect(actions_[0], &QAbstractButton::clicked, this, &ReminderCard::editRequested);
    connect(actions_[1], &QAbstractButton::clicked, this, &ReminderCard::duplicateRequested);
    connect(actions_[2], &QAbstractButton::clicked, this, &ReminderCard::deleteRequested);
    actions_[2]->setHoverColor(Theme::Color::missed);
    QWidget* before = this;
    for (IconButton* action : actions_) {
        action->setAccessibleName(action->toolTip() + u' ' + toQString(reminder.displayTitle()));
        action->installEventFilter(this);
        setTabOrder(before, action);
        before = action;
    }
    setTabOrder(before, switch_);
    placeChildren();
}

void ReminderCard::showActions(bool areShown) {
    if (areShown == areActionsShown_) return;
    if (areShown && !actions_[0]) makeActions();
    areActionsShown_ = areShown;
    for (IconButton* action : actions_)
        action->setVisible(areShown);
    update();
}

void ReminderCard::placeChildren() {
    const QRect card = shape().toRect();
    const auto place = [&](QWidget* child, int right) {
        const QSize size = child->sizeHint();
        child->setGeometry(right - size.width(), card.center().y() + 1 - size.height() / 2,
                           size.width(), size.height());
        return right - size.width();
    };
    int right = place(switch_, card.right() + 1 - edge + focusMargin);
    if (!actions_[0]) return;
    right -= edge - 2 * focusMargin - 4;
    for (auto action = actions_.rbegin(); action != actions_.rend(); ++action)
        right = place(*action, right) + focusMargin;
}

bool ReminderCard::event(QEvent* event) {
    switch (event->type()) {
        case QEvent::Enter:
        case QEvent::FocusIn:
        case QEvent::Leave:
        case QEvent::FocusOut: {
            const bool result = PaintedButton::event(event);
            const QWidget* focus = window()->focusWidget();
            const bool isFocusInside =
                showsFocus() || (focus && isAncestorOf(focus) && focus->hasFocus());
            showActions(underMouse() || isFocusInside);
            return result;
        }
        case QEvent::ToolTip: {
            const auto* help = static_cast<QHelpEvent*>(event);
            const Columns at = columns();
            const QFontMetricsF metrics(fontOf(Theme::Type::body));
            QStringList hidden;
            const QString title = toQString(content_.reminder.displayTitle());
            for (const QString& line : {title, detailsLine()})
                if (metrics.horizontalAdvance(line) > at.text.width()) hidden << line;
            if (hidden.isEmpty())
                QToolTip::hideText();
            else
                QToolTip::showText(help->globalPos(), hidden.join(u'\n'), this);
            return true;
        }
        default:
            return PaintedButton::event(event);
    }
}

bool ReminderCard::eventFilter(QObject* watched, QEvent* event) {
    const bool isFocusIn = event->type() == QEvent::FocusIn;
    if (isFocusIn) showActions(true);
    if (event->type() == QEvent::FocusOut) {
        // The focus may be on its way to another control of this card.
        QMetaObject::invokeMethod(
            this,
            [this] {
                const QWidget* focus = window()->focusWidget();
                const bool isInside = focus && (focus == this || isAncestorOf(focus));
                showActions(underMouse() || isInside);
            },
            Qt::QueuedConnection);
    }
    return PaintedButton::eventFilter(watched, event);
}

void ReminderCard::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && !event->isAutoRepeat()) return switch_->click();
    if (event->key() == Qt::Key_Delete) return Q_EMIT deleteRequested();
    if (event->key() == Qt::Key_F2) return Q_EMIT editRequested();
    if (event->key() == Qt::Key_D && event->modifiers() == Qt::ControlModifier)
        return Q_EMIT duplicateRequested();
    PaintedButton::keyPressEvent(event);
}

void ReminderCard::resizeEvent(QResizeEvent* event) {
    PaintedButton::resizeEvent(event);
    placeChildren();
}

void ReminderCard::paintEvent(QPaintEvent*) {
    const Theme& theme = Theme::instance();
    const Reminder& reminder = content_.reminder;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor surface = theme.color(Theme::Color::surface);
    painter.setPen(Qt::NoPen);
    painter.setBrush(isDown() ? blended(theme.color(Theme::Color::text), surface, 0.04) : surface);
    painter.drawRoundedRect(shape(), Theme::cardRadius, Theme::cardRadius);
    QColor line = theme.color(Theme::Color::hairline);
    if (isHovered()) line.setAlpha(std::min(line.alpha() * 2, 255));
    drawHairline(painter, shape(), Theme::cardRadius, line);
    if (showsFocus()) drawFocusRing(painter, shape(), Theme::cardRadius);

    if (!reminder.isOn) painter.setOpacity(offOpacity);
    QRectF circle(0, 0, circleSize, circleSize);
    circle.moveCenter({shape().left() + edge + circleSize / 2.0, shape().center().y()});
    drawSymbolCircle(painter, displaySymbol(reminder), circle, theme.accent(reminder.kind()));
    paintText(painter);
}

void ReminderCard::paintText(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    const QColor text = theme.color(Theme::Color::text);
    const QColor secondary = theme.color(Theme::Color::secondary);
    const Columns at = columns();
    const QFontMetricsF bold(fontOf(Theme::Type::body, true));
    const QFontMetricsF body(fontOf(Theme::Type::body));
    const QFontMetricsF caption(fontOf(Theme::Type::caption));
    constexpr double lineGap = 3;

    const auto elided = [&](const QFontMetricsF& metrics, const QString& line) {
        return metrics.elidedText(line, Qt::ElideRight, at.text.width());
    };
    // A warning is long and takes up to two small lines.
    const QRectF warningBox(0, 0, at.text.width(), 2 * caption.height());
    const auto wrapped = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;
    const double second =
        content_.neverFires
            ? std::min(warningBox.height(),
                       caption.boundingRect(warningBox, wrapped, content_.status).height())
            : body.height();
    double y = at.text.center().y() - (bold.height() + lineGap + second) / 2;
    painter.setFont(fontOf(Theme::Type::body, true));
    painter.setPen(text);
    painter.drawText(QPointF(at.text.left(), y + bold.ascent()),
                     elided(bold, toQString(content_.reminder.displayTitle()).simplified()));
    y += bold.height() + lineGap;
    if (content_.neverFires) {
        painter.setFont(fontOf(Theme::Type::caption));
        painter.setPen(theme.color(Theme::Color::missed));
        painter.drawText(QRectF(at.text.left(), y, at.text.width(), second + 1), wrapped,
                         content_.status);
    } else {
        painter.setFont(fontOf(Theme::Type::body));
        painter.setPen(secondary);
        painter.drawText(QPointF(at.text.left(), y + body.ascent()), elided(body, detailsLine()));
    }

    if (at.status.width() <= 0) return;
    const auto right = Qt::AlignRight | Qt::AlignTop | Qt::TextWordWrap;
    const QString status = content_.neverFires ? QString() : content_.status;
    const QRectF box(0, 0, at.status.width(), shape().height());
    const double statusHeight =
        status.isEmpty() ? 0 : body.boundingRect(box, right, status).height() + lineGap;
    y = at.status.center().y() - (statusHeight + caption.height()) / 2;
    painter.setPen(secondary);
    if (!status.isEmpty()) {
        painter.setFont(fontOf(Theme::Type::body));
        painter.drawText(QRectF(at.status.left(), y, at.status.width(), statusHeight), right,
                         status);
    }
    painter.setFont(fontOf(Theme::Type::caption));
    painter.drawText(
        QRectF(at.status.left(), y + statusHeight, at.status.width(), caption.height()),
        Qt::AlignRight | Qt::AlignTop,
        caption.elidedText(repetition(content_.reminder), Qt::ElideRight, at.status.width()));
}

}  // namespace tendel

#include "ui/panel/NextReminderView.h"

#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

#include "ui/panel/Beads.h"
#include "ui/theme/Accessible.h"
#include "ui/theme/Button.h"
#include "ui/theme/Icons.h"
#include "ui/theme/QtText.h"
#include "ui/theme/SymbolCircle.h"
#include "ui/theme/TabularText.h"

namespace tendel {

namespace {

using Bead = NextReminderCard::Bead;

constexpr int edge = 14;
constexpr int circleSize = 40;
constexpr int gap = 12;
constexpr int nextHeight = 44;
constexpr int pauseHeight = 54;
constexpr int todayHeight = 16;
constexpr int beadSize = 8;
constexpr int beadStep = 12;
constexpr int beadsHeight = 12;
constexpr int barHeight = 4;

void drawBead(QPainter& painter, Bead bead, QPointF centre) {
    const Theme& theme = Theme::instance();
    constexpr double radius = beadSize / 2.0;
    painter.save();
    painter.translate(centre);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::NoBrush);
    const auto pen = [](const QColor& color, double width) {
        return QPen(color, width, Qt::SolidLine, Qt::RoundCap);
    };
    switch (bead) {
        case Bead::done:
            painter.setBrush(theme.color(Theme::Color::good));
            painter.drawEllipse(QPointF(), radius, radius);
            break;
        case Bead::missed: {
            constexpr double arm = radius - 1.2;
            painter.setPen(pen(theme.color(Theme::Color::missed), 2));
            painter.drawLine(QPointF(-arm, -arm), QPointF(arm, arm));
            painter.drawLine(QPointF(-arm, arm), QPointF(arm, -arm));
            break;
        }
        case Bead::coming:
            painter.setPen(pen(theme.color(Theme::Color::secondary), 1.25));
            painter.drawEllipse(QPointF(), radius - 1, radius - 1);
            break;
    }
    painter.restore();
}

}  // namespace

QString sentenceOf(const NextReminderCard& card) {
    QString text = toQString(card.title);
    if (!card.when.empty()) text += ", " + toQString(card.when);
    if (!card.today.empty()) {
        text += ". " + toQString(card.today);
        const auto missed = std::ranges::count(card.beads, Bead::missed);
        const auto coming = std::ranges::count(card.beads, Bead::coming);
        if (missed > 0) text += NextReminderView::tr(", %1 missed").arg(missed);
        if (coming > 0) text += NextReminderView::tr(", %1 to come").arg(coming);
    }
    if (!card.streak.empty()) text += ". " + toQString(card.streak);
    return text;
}

NextReminderView::NextReminderView(QWidget* parent)
    : Card(parent), resume_(new Button(Button::Role::normal, tr("Resume"), this)) {
    tellAs<NextReminderView, QAccessible::Grouping>();
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    resume_->setAccessibleName(tr("Resume Reminders"));
    resume_->hide();
    connect(resume_, &QAbstractButton::clicked, this, &NextReminderView::resumePressed);
}

void NextReminderView::setCard(NextReminderCard card) {
    if (card == card_) return;
    card_ = std::move(card);
    joinBeads();
    if (const QString sentence = sentenceOf(card_); sentence != accessibleName())
        setAccessibleName(sentence);
    resume_->setVisible(isPaused());
    updateGeometry();
    update();
}

QSize NextReminderView::sizeHint() const {
    int height = edge + headHeight() + edge;
    if (hasToday()) height += todayHeight + 8;
    if (!card_.beads.empty()) height += beadsHeight + 4;
    return {160, height};
}

void NextReminderView::resizeEvent(QResizeEvent*) {
    const QSize size = resume_->sizeHint();
    resume_->setGeometry(QRect(QPoint(width() - edge + focusMargin - size.width(),
                                      edge + pauseHeight + focusMargin - size.height()),
                               size));
    joinBeads();
}

void NextReminderView::joinBeads() {
    const int room = std::max(beadStep, width() - 2 * edge + beadStep - beadSize);
    beads_ = joined(card_.beads, static_cast<std::size_t>(room / beadStep));
}

int NextReminderView::headHeight() const {
    return isPaused() ? pauseHeight : nextHeight;
}

QRectF NextReminderView::titleBox() const {
    const double left = edge + circleSize + gap;
    const bool isAlone = !isPaused() && card_.when.empty();
    return {left, isAlone ? edge + 12.0 : edge + 2.0, width() - edge - left, 20};
}

QString NextReminderView::elidedTitle() const {
    const QFontMetrics metrics(Theme::instance().font(Theme::Type::title, true));
    return metrics.elidedText(toQString(card_.title), Qt::ElideRight,
                              static_cast<int>(titleBox().width()));
}

bool NextReminderView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return Card::event(event);
    // Only where the title does not say all.
    const QString whole = toQString(card_.title);
    if (elidedTitle() != whole)
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), whole, this,
                           titleBox().toAlignedRect());
    return true;
}

void NextReminderView::paintEvent(QPaintEvent* event) {
    Card::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    paintNext(painter);
    paintToday(painter);
}

void NextReminderView::paintNext(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    const bool isQuiet = isPaused() || card_.symbol.empty();
    const std::string_view symbol = isPaused()             ? "pause"
                                    : card_.symbol.empty() ? "bell"
                                                           : std::string_view(card_.symbol);
    drawSymbolCircle(painter, symbol,
                     QRectF(edge, edge + (headHeight() - circleSize) / 2.0, circleSize, circleSize),
                     theme.color(isQuiet ? Theme::Color::secondary : Theme::Color::workAccent));
    const QRectF title = titleBox();
    painter.setFont(theme.font(Theme::Type::title, true));
    painter.setPen(theme.color(card_.when.empty() && !isPaused() ? Theme::Color::secondary
                                                                 : Theme::Color::text));
    painter.drawText(title, Qt::AlignVCenter | Qt::AlignLeft, elidedTitle());
    if (!isPaused()) {
        painter.setFont(theme.font(Theme::Type::body));
        painter.setPen(theme.color(Theme::Color::secondary));
        drawTabular(painter, title.translated(0, 20), Qt::AlignVCenter | Qt::AlignLeft,
                    toQString(card_.when));
        return;
    }
    QRectF bar(title.left(), QRectF(resume_->geometry()).center().y() - barHeight / 2.0,
               resume_->x() - 8 - title.left(), barHeight);
    QColor track = theme.color(Theme::Color::text);
    track.setAlphaF(theme.isDark() ? 0.16F : 0.1F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(track);
    painter.drawRoundedRect(bar, barHeight / 2.0, barHeight / 2.0);
    bar.setWidth(std::max<double>(barHeight, bar.width() * *card_.pauseProgress));
    painter.setBrush(theme.color(Theme::Color::workAccent));
    painter.drawRoundedRect(bar, barHeight / 2.0, barHeight / 2.0);
}

void NextReminderView::paintToday(QPainter& painter) const {
    const Theme& theme = Theme::instance();
    const QRectF line(edge, edge + headHeight() + 8, width() - 2 * edge, todayHeight);
    painter.setFont(theme.font(Theme::Type::caption));
    painter.setPen(theme.color(Theme::Color::secondary));
    const bool hasDay = !card_.today.empty();
    drawTabular(painter, line, Qt::AlignVCenter | Qt::AlignLeft, toQString(card_.today));
    drawTabular(painter, line, Qt::AlignVCenter | (hasDay ? Qt::AlignRight : Qt::AlignLeft),
                toQString(card_.streak));
    QPointF centre(edge + beadSize / 2.0, line.bottom() + 4 + beadsHeight / 2.0);
    for (const Bead bead : beads_) {
        drawBead(painter, bead, centre);
        centre.rx() += beadStep;
    }
}

}  // namespace tendel

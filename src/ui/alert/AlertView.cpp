#include "ui/alert/AlertView.h"

#include <QAccessible>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/alert/AlertMarks.h"
#include "ui/alert/AlertShape.h"
#include "ui/theme/Accessible.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

using Phase = NotchAlertPhase;
using Face = AlertButton::Face;

constexpr double margin = 16;       // between the alert's side and what it holds
constexpr double bottomSpace = 14;  // below the row of answers
constexpr double rowHeight = 32;
constexpr double gap = 6;
constexpr double compactMargin = 8;
constexpr double compactSize = 28;
constexpr double compactGap = 6;

// The way back lies where the ellipsis was, so that a double click there answers nothing.
std::vector<AlertAnswer> withBack(std::vector<AlertAnswer> further) {
    further.push_back(AlertAnswer::back);
    return further;
}

}  // namespace

AlertView::AlertView(NotchAlertModel& model, const NotchAlertActions& actions, EventLoop& loop)
    : model_(model), actions_(actions), loop_(loop) {
    tellAs<AlertView, QAccessible::AlertMessage>();
    frames_.setTimerType(Qt::PreciseTimer);
    connect(&frames_, &QTimer::timeout, this, &AlertView::drawFrame);
    connect(&Theme::instance(), &Theme::changed, this, [this] {
        layOut();
        update();
    });
    modelChanged_ = model_.changed.connect(
        [this](const std::optional<MotionCurve>& curve) { modelChanged(curve); });
}

void AlertView::setMeasures(const NotchAlertGeometry& geometry) {
    if (geometry == geometry_ && isVisible()) return;
    NotchAlertGeometry before = std::exchange(geometry_, geometry);
    before.restingWidth = geometry.restingWidth;
    // The pill that it tucks into has come or gone: all but the way there stays.
    if (before == geometry && isVisible()) return modelChanged(NotchAlertMotion::swap);
    layOut();
    modelChanged(std::nullopt);
}

void AlertView::modelChanged(const std::optional<MotionCurve>& curve) {
    takeContent();
    headFor(model_, isVisible() ? curve : std::nullopt);
    animate();
}

void AlertView::takeContent() {
    if (!model_.content() || *model_.content() == content_) return;
    const NotchAlertContent old = std::exchange(content_, *model_.content());
    const bool isAnother = old.id != content_.id;
    if (isAnother) contentOpacity_.jump(0);
    if (isAnother || old.breakEndsAt.has_value() != content_.breakEndsAt.has_value()) {
        rowOpacity_.jump(isAnother ? 1 : 0);
        showsFurther_ = false;
    }
    const auto text = [](const std::string& utf8) { return QString::fromStdString(utf8); };
    setAccessibleName(text(content_.title));
    setAccessibleDescription(text(content_.detail) + QLatin1Char('\n') +
                             text(content_.notice.value_or("")));
    layOut();
}

void AlertView::headFor(const NotchAlertModel& model, const std::optional<MotionCurve>& curve) {
    const Change change{curve, model.speed, loop_.monotonicNow()};
    const bool fades = model.reduceMotion;
    shape_.headFor(geometry_.outline(model.phase()), model.phase() == Phase::hidden,
                   fades ? AnimatedOutline::Manner::fade : AnimatedOutline::Manner::grow, change);

    const bool showedContent = contentOpacity_.target() > 0;
    const bool showsContent = model.showsContent() && !model.showsCompletion();
    const bool showsCompletion = model.showsContent() && model.showsCompletion();
    if (showsCompletion && completionOpacity_.target() == 0) checkDrawn_.jump(0);
    tendel::headFor(contentOpacity_, showsContent ? 1 : 0, change);
    tendel::headFor(rowOpacity_, 1, change);
    tendel::headFor(completionOpacity_, showsCompletion ? 1 : 0, change);
    if (showsCompletion && fades)
        checkDrawn_.jump(1);
    else if (showsCompletion)
        tendel::headFor(checkDrawn_, 1, change);
    if (showsContent && !showedContent) announce();
}

void AlertView::announce() {
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

QRectF AlertView::body(NotchAlertPhase phase) const {
    const AlertOutline outline = geometry_.outline(phase);
    const double base = geometry_.baseHeight();
    return {width() / 2.0 - outline.width / 2 + outline.topRadius, base,
            outline.width - 2 * outline.topRadius, outline.height - base};
}

void AlertView::layOut() {
    if (!model_.content()) return;
    row_.clear();
    if (content_.breakEndsAt)
        countdown_.set(*content_.breakEndsAt, content_.durationSeconds.value_or(0),
                       alertAccent(content_));
    if (geometry_.style == AlertStyle::compact)
        layOutCompact(body(Phase::expanded));
    else
        layOutFull(body(Phase::expanded));
}

void AlertView::layOutFull(const QRectF& body) {
    face_.layOut(content_, AlertStyle::full, body, 0);
    QRectF row(body.left() + margin, body.bottom() - bottomSpace - rowHeight,
               body.width() - 2 * margin, rowHeight);
    if (content_.breakEndsAt) {
        const QSizeF size = countdown_.sizeHint();
        countdown_.setGeometry(QRectF(row.topLeft(), size).toAlignedRect());
        row.setLeft(row.left() + size.width() + gap);
    }
    const auto arrangement = rows(Face::text, row.width(), gap, alertAnswerCount);
    placeRow(showsFurther_ ? withBack(arrangement.further) : arrangement.first, row, gap);
}

void AlertView::layOutCompact(const QRectF& body) {
    QRectF row(body.left() + compactMargin, body.center().y() - compactSize / 2,
               body.width() - 2 * compactMargin, compactSize);
    const std::size_t limit = content_.breakEndsAt ? 1 : content_.durationSeconds ? 3 : 2;
    const auto arrangement = rows(Face::symbol, row.width(), compactGap, limit);
    const double buttons =
        double(arrangement.first.size()) * (compactSize + compactGap) - compactGap;
    double textRight = row.right() - buttons - gap;
    if (content_.breakEndsAt) {
        const QSize size = countdown_.sizeHint();
        textRight -= size.width() + gap;
        countdown_.setGeometry(static_cast<int>(textRight + gap),
                               static_cast<int>(body.center().y()) - size.height() / 2,
                               size.width(), size.height());
    }
    face_.layOut(content_, AlertStyle::compact, body, textRight);
    if (!showsFurther_) row.setLeft(row.right() - buttons);
    placeRow(showsFurther_ ? withBack(arrangement.further) : arrangement.first, row, compactGap);
}

AlertAnswerRows AlertView::rows(AlertButton::Face face, double width, double space,
                                std::size_t limit) {
    return arranged(answersTo(content_), width, space, limit,
                    [&](AlertAnswer answer) { return prepared(answer, face).sizeHint().width(); });
}

// The primary answer takes the spare width, or the further ones share it; while a break runs there
// is neither, and the row ends at the right.
void AlertView::placeRow(const std::vector<AlertAnswer>& answers, const QRectF& row, double space) {
    const bool isCompact = geometry_.style == AlertStyle::compact;
    const Face face = isCompact && !showsFurther_ ? Face::symbol : Face::text;
    std::vector<double> widths;
    std::vector<bool> takesSpare;
    double taken = -space;
    for (const AlertAnswer answer : answers) {
        const bool isSymbol = prepared(answer, face).sizeHint().width() <= rowHeight;
        widths.push_back(isCompact && isSymbol ? compactSize
                                               : prepared(answer, face).sizeHint().width());
        takesSpare.push_back(showsFurther_ ? answer != AlertAnswer::back
                                           : isPrimary(answer, content_));
        taken += widths.back() + space;
    }
    const auto takers = std::count(takesSpare.begin(), takesSpare.end(), true);
    const double spare = row.width() - taken;
    double x = takers > 0 ? row.left() : row.right() - taken;
    for (std::size_t i = 0; i < answers.size(); ++i) {
        if (takesSpare[i]) widths[i] += spare / double(takers);
        AlertButton& button = prepared(answers[i], face);
        const int left = static_cast<int>(std::round(x));
        x += widths[i];
        button.setGeometry(left, static_cast<int>(std::round(row.top())),
                           static_cast<int>(std::round(x)) - left, static_cast<int>(row.height()));
        x += space;
    }
    row_ = answers;
}

// The answer's button, made on first use, with the content's text.
AlertButton& AlertView::prepared(AlertAnswer answer, AlertButton::Face face) {
    AlertButton*& button = buttons_[static_cast<std::size_t>(answer)];
    if (!button) {
        button = new AlertButton(this);
        connect(button, &QAbstractButton::clicked, this, [this, answer] { this->answer(answer); });
    }
    const bool isTurn = answer == AlertAnswer::more || answer == AlertAnswer::back;
    button->set(isTurn ? Face::symbol : face, textOf(answer, content_), symbolOf(answer),
                !isTurn && isPrimary(answer, content_) ? alertAccent(content_) : QColor());
    return *button;
}

void AlertView::answer(AlertAnswer answer) {
    if (answer == AlertAnswer::more || answer == AlertAnswer::back)
        turnTo(answer == AlertAnswer::more);
    else
        give(answer, actions_);
}

void AlertView::turnTo(bool showsFurther) {
    if (showsFurther == showsFurther_) return;
    showsFurther_ = showsFurther;
    layOut();
    rowOpacity_.jump(0);
    rowOpacity_.animate(1, NotchAlertMotion::contentIn, model_.speed, loop_.monotonicNow());
    animate();
}

void AlertView::animate() {
    drawFrame();
    if (!isAtRest() && isVisible() && !frames_.isActive()) frames_.start(frameInterval(*this));
}

bool AlertView::isAtRest() const {
    const MonotonicInstant now = loop_.monotonicNow();
    return shape_.isAtRest(now) && std::ranges::all_of(fading_, [&](const AnimatedValue* value) {
               return value->isAtRest(now);
           });
}

void AlertView::drawFrame() {
    const MonotonicInstant now = loop_.monotonicNow();
    const AlertOutline outline = shape_.value(now);
    presenceShown_ = shape_.presence(now);
    contentShown_ = opacityAt(contentOpacity_, now) * presenceShown_;
    completionShown_ = opacityAt(completionOpacity_, now) * presenceShown_;
    checkShown_ = opacityAt(checkDrawn_, now);
    if (outline != outline_ || path_.isEmpty()) {
        outline_ = outline;
        path_ = alertPath(outline, width() / 2.0);
        onOutlineChange(outline);
    }

    const bool showsContent = contentOpacity_.target() > 0 || contentShown_ > 0;
    const double row = contentShown_ * opacityAt(rowOpacity_, now);
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        AlertButton* button = buttons_[i];
        if (!button) continue;
        const bool isInRow = std::ranges::find(row_, static_cast<AlertAnswer>(i)) != row_.end();
        button->setShown(row, path_.translated(-button->pos()));
        button->setVisible(showsContent && isInRow);
    }
    const bool isCovered = geometry_.style == AlertStyle::compact && showsFurther_;
    countdown_.setShown(row, path_.translated(-countdown_.pos()));
    countdown_.setVisible(showsContent && content_.breakEndsAt && !isCovered);
    update();

    if (isAtRest()) frames_.stop();
}

void AlertView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(path_, QColor(0, 0, 0, static_cast<int>(std::lround(255 * presenceShown_))));
    painter.setClipPath(path_);
    if (contentShown_ > 0) {
        painter.setOpacity(contentShown_);
        face_.draw(painter, !(geometry_.style == AlertStyle::compact && showsFurther_));
    }
    if (completionShown_ > 0) drawCompletion(painter);
}

void AlertView::drawCompletion(QPainter& painter) const {
    const QFont font = Theme::instance().font(Theme::Type::body, true);
    const QFontMetricsF metrics(font);
    constexpr double markWidth = 22;
    constexpr double markHeight = 16;
    constexpr double space = 8;
    const QRectF body = this->body(Phase::done);
    const double height = markHeight + space + metrics.capHeight();
    // A little above the middle: the round bottom corners make the lower half look smaller.
    const double top = body.center().y() - height / 2 - 1;
    const double left = body.center().x() - markWidth / 2;

    painter.setOpacity(completionShown_);
    drawCheckMark(painter, QRectF(left, top, markWidth, markHeight), 3, checkShown_);
    painter.setPen(Qt::white);
    painter.setFont(font);
    const QString message = metrics.elidedText(QString::fromStdString(model_.completionMessage()),
                                               Qt::ElideRight, body.width() - 2 * margin);
    painter.drawText(
        QPointF(body.center().x() - metrics.horizontalAdvance(message) / 2, top + height), message);
}

bool AlertView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const QString whole = face_.wholeText();
    if (contentShown_ > 0 && face_.textBox().contains(help->pos()) && !whole.isEmpty())
        QToolTip::showText(help->globalPos(), whole, this, face_.textBox().toAlignedRect());
    else
        QToolTip::hideText();
    return true;
}

void AlertView::enterEvent(QEnterEvent*) {
    model_.setHovered(true);
}

void AlertView::leaveEvent(QEvent*) {
    model_.setHovered(false);
    turnTo(false);
}

void AlertView::resizeEvent(QResizeEvent*) {
    path_ = {};
    layOut();
    drawFrame();
}

void AlertView::hideEvent(QHideEvent*) {
    frames_.stop();
    model_.setHovered(false);
}

}  // namespace tendel

#include "ui/pill/PillView.h"

#include <QEnterEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

#include "ui/alert/AlertShape.h"
#include "ui/theme/Accessible.h"
#include "ui/theme/QtText.h"
#include "ui/theme/Theme.h"

namespace tendel {

namespace {

using Control = LiveActivity::Control;
using Phase = NotchLivePhase;
using Face = AlertButton::Face;

constexpr double gap = 6;
constexpr double symbolWidth = 36;

// Names the pill when it is asked for: a name that was set would be announced with every second.
class PillInterface : public QAccessibleWidget {
public:
    explicit PillInterface(PillView* view) : QAccessibleWidget(view, QAccessible::StatusBar) {}
    QString text(QAccessible::Text kind) const override {
        if (kind == QAccessible::Name) return static_cast<PillView*>(widget())->spokenName();
        return QAccessibleWidget::text(kind);
    }
};

std::string_view symbolOf(Control control) {
    switch (control) {
        case Control::pause:
            return "pause";
        case Control::resume:
        case Control::startFocus:
        case Control::resumeReminders:
            return "play";
        case Control::skip:
            return "forward.end";
        case Control::stop:
        case Control::stopBreak:
            return "stop";
        case Control::extendBreak:
            return "plus";
        case Control::finishBreak:
            return "check";
        case Control::mute:
            return "speaker";
        case Control::unmute:
            return "speaker.slash";
    }
    return {};
}

bool isSwitchOfSounds(Control control) {
    return control == Control::mute || control == Control::unmute;
}

std::pair<double, double> positionOf(const QSinglePointEvent& event) {
    return {event.globalPosition().x(), event.globalPosition().y()};
}

}  // namespace

PillView::PillView(NotchLiveController& live, EventLoop& loop)
    : live_(live), model_(live.model()), loop_(loop) {
    tellThrough<PillView, PillInterface>();
    setMouseTracking(true);
    frames_.setTimerType(Qt::PreciseTimer);
    connect(&frames_, &QTimer::timeout, this, &PillView::drawFrame);
    connect(&Theme::instance(), &Theme::changed, this, [this] {
        layOut();
        update();
    });
    subscriptions_.push_back(model_.changed.connect(
        [this](const std::optional<MotionCurve>& curve) { modelChanged(curve); }));
    subscriptions_.push_back(model_.timeChanged.connect([this] {
        takeTime();
        update(face_.timeRegion(model_.phase()));
    }));
}

QString PillView::spokenName() const {
    const QString title = toQString(activity_.title);
    const auto left = activity_.remaining(loop_.now());
    const QString time = toQString(activity_.fullText(loop_.now()));
    if (left) return QStringLiteral("%1, %2 left").arg(title, time);
    return time.isEmpty() ? title : QStringLiteral("%1, %2").arg(title, time);
}

void PillView::setMeasures(const NotchLiveGeometry& geometry) {
    if (geometry == geometry_ && isVisible()) return;
    geometry_ = geometry;
    layOut();
    modelChanged(std::nullopt);
}

void PillView::setBelowAlert(bool isBelowAlert) {
    if (isBelowAlert == isBelowAlert_) return;
    isBelowAlert_ = isBelowAlert;
    if (isBelowAlert)
        modelChanged(std::nullopt);
    else
        modelChanged(model_.reduceMotion ? NotchAlertMotion::reduced : NotchAlertMotion::contentIn);
}

void PillView::modelChanged(const std::optional<MotionCurve>& curve) {
    takeActivity();
    takeTime();
    headFor(isVisible() ? curve : std::nullopt);
    animate();
}

void PillView::takeActivity() {
    // While it shrinks away it goes on to show what ended.
    if (!model_.activity() || *model_.activity() == activity_) return;
    const LiveActivity old = std::exchange(activity_, *model_.activity());
    if (old.title != activity_.title || old.systemImage != activity_.systemImage) {
        pillOpacity_.jump(0);
        cardOpacity_.jump(0);
        checkDrawn_.jump(0);
        const auto told = isFinished(activity_) ? QAccessible::Alert : QAccessible::NameChanged;
        QAccessibleEvent event(this, told);
        QAccessible::updateAccessibility(&event);
    }
    setAccessibleDescription(toQString(activity_.subtitle.value_or("")));
    layOut();
    update();
}

void PillView::takeTime() {
    if (model_.phase() == Phase::pill) pillTime_ = model_.time();
    if (model_.phase() == Phase::card) cardTime_ = model_.time();
}

void PillView::headFor(const std::optional<MotionCurve>& curve) {
    const Change change{curve, model_.speed, loop_.monotonicNow()};
    const Change atOnce{};
    const bool fades = model_.reduceMotion;
    const Phase phase = model_.phase();
    const bool isCard = phase == Phase::card;
    shape_.headFor(geometry_.outline(fades && isCard ? Phase::pill : phase), phase == Phase::hidden,
                   fades ? AnimatedOutline::Manner::fade : AnimatedOutline::Manner::grow, change);
    tendel::headFor(cardPresence_, fades && isCard ? 1 : 0, fades ? change : atOnce);

    // What leaves is gone before the shape has closed in on it.
    Change out = change;
    if (curve && !fades) out.curve = NotchAlertMotion::contentOut;
    const bool shows = model_.showsContent() && !isBelowAlert_;
    for (auto [value, isShown] : {std::pair(&pillOpacity_, shows && phase == Phase::pill),
                                  std::pair(&cardOpacity_, shows && isCard)})
        tendel::headFor(*value, isShown ? 1 : 0, isShown ? change : out);
    if (isFinished(activity_) && shows) {
        Change drawing = fades ? atOnce : change;
        if (drawing.curve) drawing.curve = NotchAlertMotion::completion;
        tendel::headFor(checkDrawn_, 1, drawing);
    }
}

void PillView::layOut() {
    if (!model_.activity()) return;
    face_.layOut(activity_, geometry_, width() / 2.0, loop_.now());
    placeButtons();
}

// The first control takes the spare width. Where the texts have no room, the last become symbols.
void PillView::placeButtons() {
    const auto& controls = activity_.controls;
    std::vector<Face> faces;
    for (const Control control : controls)
        faces.push_back(isSwitchOfSounds(control) ? Face::symbol : Face::text);
    const auto widthOf = [&](std::size_t i) {
        const int width = prepared(controls[i], faces[i], i == 0).sizeHint().width();
        return faces[i] == Face::symbol ? symbolWidth : double(width);
    };
    const auto taken = [&] {
        double sum = -gap;
        for (std::size_t i = 0; i < controls.size(); ++i)
            sum += widthOf(i) + gap;
        return sum;
    };
    const QRectF& row = face_.row();
    for (std::size_t i = controls.size(); i-- > 1 && taken() > row.width();)
        faces[i] = Face::symbol;

    const double spare = row.width() - taken();
    double x = row.left();
    for (std::size_t i = 0; i < controls.size(); ++i) {
        const double right = x + widthOf(i) + (i == 0 ? spare : 0);
        const int left = static_cast<int>(std::lround(x));
        prepared(controls[i], faces[i], i == 0)
            .setGeometry(left, static_cast<int>(std::lround(row.top())),
                         static_cast<int>(std::lround(right)) - left,
                         static_cast<int>(row.height()));
        x = right + gap;
    }
}

// The control's button, made on first use.
AlertButton& PillView::prepared(Control control, Face face, bool isPrimary) {
    AlertButton*& button = buttons_[static_cast<std::size_t>(control)];
    if (!button) {
        button = new AlertButton(this);
        connect(button, &QAbstractButton::clicked, this, [this, control] { live_.press(control); });
    }
    button->set(face, toQString(controlTitle(activity_, control)), symbolOf(control),
                isPrimary ? face_.accent() : QColor());
    return *button;
}

void PillView::animate() {
    drawFrame();
    if (!isAtRest() && isVisible() && !frames_.isActive()) frames_.start(frameInterval(*this));
}

bool PillView::isAtRest() const {
    const MonotonicInstant now = loop_.monotonicNow();
    return shape_.isAtRest(now) && std::ranges::all_of(fading_, [&](const AnimatedValue* value) {
               return value->isAtRest(now);
           });
}

void PillView::drawFrame() {
    const MonotonicInstant now = loop_.monotonicNow();
    presenceShown_ = shape_.presence(now);
    cardPresenceShown_ = opacityAt(cardPresence_, now);
    pillShown_ = opacityAt(pillOpacity_, now) * presenceShown_;
    cardShown_ = opacityAt(cardOpacity_, now) * presenceShown_;
    checkShown_ = opacityAt(checkDrawn_, now);
    const AlertOutline outline =
        cardPresenceShown_ > 0 ? geometry_.outline(Phase::card) : shape_.value(now);
    if (outline != outline_ || path_.isEmpty()) {
        outline_ = outline;
        path_ = alertPath(outline, width() / 2.0);
        onOutlineChange();
    }
    for (std::size_t i = 0; i < buttons_.size(); ++i) {
        AlertButton* button = buttons_[i];
        if (!button) continue;
        const bool isOffered = std::ranges::find(activity_.controls, static_cast<Control>(i)) !=
                               activity_.controls.end();
        button->setShown(cardShown_, path_.translated(-button->pos()));
        button->setVisible(isOffered && cardShown_ > 0);
    }
    update();
    if (isAtRest()) frames_.stop();
}

void PillView::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto black = [](double opacity) {
        return QColor(0, 0, 0, static_cast<int>(std::lround(255 * opacity)));
    };
    if (cardPresenceShown_ > 0) {
        painter.fillPath(path_, black(cardPresenceShown_));
        painter.fillPath(alertPath(geometry_.outline(Phase::pill), width() / 2.0),
                         black(presenceShown_));
    } else {
        painter.fillPath(path_, black(presenceShown_));
    }
    painter.setClipPath(path_);
    if (pillShown_ > 0) {
        painter.setOpacity(pillShown_);
        face_.drawPill(painter, pillTime_, checkShown_);
    }
    if (cardShown_ > 0) {
        painter.setOpacity(cardShown_);
        face_.drawCard(painter, cardTime_, checkShown_);
    }
}

void PillView::enterEvent(QEnterEvent* event) {
    live_.pointerMoved(positionOf(*event));
}

void PillView::leaveEvent(QEvent*) {
    live_.pointerMoved(std::nullopt);
}

void PillView::mouseMoveEvent(QMouseEvent* event) {
    live_.pointerMoved(positionOf(*event));
}

void PillView::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && path_.contains(event->position())) live_.clicked();
}

void PillView::resizeEvent(QResizeEvent*) {
    path_ = {};
    layOut();
    drawFrame();
}

void PillView::hideEvent(QHideEvent*) {
    frames_.stop();
}

}  // namespace tendel

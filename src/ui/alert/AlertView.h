#pragma once

#include <QTimer>
#include <QWidget>

#include <array>
#include <functional>

#include "alerts/NotchAlertModel.h"
#include "ui/alert/AlertAnswers.h"
#include "ui/alert/AlertButton.h"
#include "ui/alert/AlertCountdown.h"
#include "ui/alert/AlertFace.h"
#include "ui/alert/AnimatedOutline.h"

namespace tendel {

// Draws the alert in the phase that its model is in, and moves from phase to phase along the
// model's curves. A frame is drawn only while something moves. Fills a panel that hangs from the
// top edge of the screen. Main thread only; what it is given must outlive it.
class AlertView : public QWidget {
    Q_OBJECT
public:
    AlertView(NotchAlertModel& model, const NotchAlertActions& actions, EventLoop& loop);

    // Takes the measures of a screen; what moved is at once where it was heading.
    void setMeasures(const NotchAlertGeometry& geometry);

    // The shape that the current frame shows.
    const AlertOutline& outline() const { return outline_; }
    std::function<void(const AlertOutline&)> onOutlineChange = [](const AlertOutline&) {};

protected:
    bool event(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void modelChanged(const std::optional<MotionCurve>& curve);
    void takeContent();
    void headFor(const NotchAlertModel& model, const std::optional<MotionCurve>& curve);
    void announce();

    void layOut();
    void layOutFull(const QRectF& body);
    void layOutCompact(const QRectF& body);
    AlertAnswerRows rows(AlertButton::Face face, double width, double gap, std::size_t limit);
    void placeRow(const std::vector<AlertAnswer>& answers, const QRectF& row, double gap);
    AlertButton& prepared(AlertAnswer answer, AlertButton::Face face);
    void answer(AlertAnswer answer);
    void turnTo(bool showsFurther);

    void animate();
    bool isAtRest() const;
    void drawFrame();
    QRectF body(NotchAlertPhase phase) const;
    void drawCompletion(QPainter& painter) const;

    NotchAlertModel& model_;
    const NotchAlertActions& actions_;
    EventLoop& loop_;
    NotchAlertGeometry geometry_;

    NotchAlertContent content_;  // what is laid out
    bool showsFurther_ = false;  // the further answers in place of the first
    std::vector<AlertAnswer> row_;
    AlertFace face_;
    AlertCountdown countdown_{loop_, this};
    std::array<AlertButton*, alertAnswerCount> buttons_{};

    // Everything that moves. Opacities are 0–1.
    AnimatedOutline shape_;
    AnimatedValue contentOpacity_;
    AnimatedValue rowOpacity_{1};
    AnimatedValue completionOpacity_;
    AnimatedValue checkDrawn_;  // how much of the check mark's path
    const std::array<AnimatedValue*, 4> fading_{&contentOpacity_, &rowOpacity_, &completionOpacity_,
                                                &checkDrawn_};
    QTimer frames_;

    // What the current frame shows.
    AlertOutline outline_;
    QPainterPath path_;
    double presenceShown_ = 1;
    double contentShown_ = 0;
    double completionShown_ = 0;
    double checkShown_ = 0;

    Subscription modelChanged_;  // last member: goes first
};

}  // namespace tendel

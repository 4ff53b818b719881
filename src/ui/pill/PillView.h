#pragma once

#include <QTimer>
#include <QWidget>

#include <array>
#include <functional>
#include <vector>

#include "menubar/NotchLiveController.h"
#include "ui/alert/AlertButton.h"
#include "ui/alert/AnimatedOutline.h"
#include "ui/pill/PillFace.h"

namespace tendel {

// Draws the live pill and its card in the phase that the model is in, and moves from phase to phase
// along the model's curves. A frame is drawn only while something moves; as time passes only what
// shows it is drawn anew. Fills a panel that hangs from the top edge of the screen. Main thread
// only; what it is given must outlive it.
class PillView : public QWidget {
    Q_OBJECT
public:
    PillView(NotchLiveController& live, EventLoop& loop);

    // Takes the measures of a screen; what moved is at once where it was heading.
    void setMeasures(const NotchLiveGeometry& geometry);
    // Whether the alert's window lies over it: the content is back once that is gone.
    void setBelowAlert(bool isBelowAlert);

    // What assistive programs call it: the activity and what is left of it.
    QString spokenName() const;
    // The shape that the current frame shows.
    const AlertOutline& outline() const { return outline_; }
    std::function<void()> onOutlineChange = [] {};

protected:
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    using Control = LiveActivity::Control;
    static constexpr std::size_t controlCount = static_cast<std::size_t>(Control::unmute) + 1;

    void modelChanged(const std::optional<MotionCurve>& curve);
    void takeActivity();
    void takeTime();
    void headFor(const std::optional<MotionCurve>& curve);
    void layOut();
    void placeButtons();
    AlertButton& prepared(Control control, AlertButton::Face face, bool isPrimary);

    void animate();
    bool isAtRest() const;
    void drawFrame();

    NotchLiveController& live_;
    NotchLiveModel& model_;
    EventLoop& loop_;
    NotchLiveGeometry geometry_;

    LiveActivity activity_;  // what is laid out
    bool isBelowAlert_ = false;
    // What each shows last, also while it fades: their texts differ in length.
    NotchLiveModel::Time pillTime_, cardTime_;
    PillFace face_;
    std::array<AlertButton*, controlCount> buttons_{};

    // Everything that moves. Opacities are 0–1.
    AnimatedOutline shape_;
    AnimatedValue cardPresence_;  // of the card's shape, where it fades in place of growing
    AnimatedValue pillOpacity_;
    AnimatedValue cardOpacity_;
    AnimatedValue checkDrawn_;
    const std::array<AnimatedValue*, 4> fading_{&cardPresence_, &pillOpacity_, &cardOpacity_,
                                                &checkDrawn_};
    QTimer frames_;

    // What the current frame shows.
    AlertOutline outline_;
    QPainterPath path_;
    double presenceShown_ = 1;
    double cardPresenceShown_ = 0;
    double pillShown_ = 0;
    double cardShown_ = 0;
    double checkShown_ = 0;

    std::vector<Subscription> subscriptions_;  // last member: goes first
};

}  // namespace tendel

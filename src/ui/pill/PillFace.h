#pragma once

#include <QColor>
#include <QPainter>
#include <QRectF>
#include <QRegion>
#include <QString>

#include "menubar/NotchLiveModel.h"

namespace tendel {

// What the pill and its card show besides the card's buttons: the symbol in its ring, the texts and
// the time. Laid out once for an activity and a place, then drawn as often as needed.
class PillFace {
public:
    // Around the notch whose middle is at `middle`.
    void layOut(const LiveActivity& activity, const NotchLiveGeometry& geometry, double middle,
                Instant now);
    // `checkDrawn`: how much of a finished break's check mark, 0–1.
    void drawPill(QPainter& painter, const NotchLiveModel::Time& time, double checkDrawn) const;
    void drawCard(QPainter& painter, const NotchLiveModel::Time& time, double checkDrawn) const;

    // What looks different when the time does.
    QRegion timeRegion(NotchLivePhase phase) const;
    QColor accent() const { return accent_; }
    // Where the card has its buttons.
    const QRectF& row() const { return row_; }

private:
    void drawSymbol(QPainter& painter, const QRectF& circle, double ring, double part) const;
    void drawCompletion(QPainter& painter, double checkDrawn) const;

    LiveActivity activity_;
    QColor accent_;
    bool isFinished_ = false;
    bool countsDown_ = false;
    QRectF leftSide_, rightSide_;  // of the notch, in the pill
    QRectF pillCircle_;
    QRectF body_;  // the card below the notch, between its flared corners
    QRectF cardCircle_;
    QRectF timeBox_;
    QPointF textPosition_;
    QString title_;
    QString subtitle_;
    QRectF row_;
};

// Nothing runs any more: the check mark of a break that is over.
inline bool isFinished(const LiveActivity& activity) {
    return activity.controls.empty();
}

}  // namespace tendel

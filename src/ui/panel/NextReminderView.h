#pragma once

#include <vector>

#include "menubar/NextReminderCard.h"
#include "ui/theme/Card.h"

namespace tendel {

class Button;

// The card on top of the panel: what comes next, or the pause with its way out, then how today went
// so far. Told to assistive programs as one sentence.
class NextReminderView : public Card {
    Q_OBJECT
public:
    explicit NextReminderView(QWidget* parent = nullptr);

    void setCard(NextReminderCard card);

    QSize sizeHint() const override;

Q_SIGNALS:
    void resumePressed();

protected:
    bool event(QEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    bool isPaused() const { return card_.pauseProgress.has_value(); }
    bool hasToday() const { return !card_.today.empty() || !card_.streak.empty(); }
    int headHeight() const;
    QRectF titleBox() const;
    QString elidedTitle() const;
    void joinBeads();
    void paintNext(QPainter& painter) const;
    void paintToday(QPainter& painter) const;

    NextReminderCard card_;
    std::vector<NextReminderCard::Bead> beads_;  // as many as fit
    Button* resume_;
};

// All that the card says: "Stretch, in 12m · 10:30. Today 3 of 8 done, 1 missed, 4 to come. 4-day
// streak".
QString sentenceOf(const NextReminderCard& card);

}  // namespace tendel
